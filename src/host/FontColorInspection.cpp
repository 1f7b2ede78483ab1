#include "host/FontColorInspection.h"

#include "app/Log.h"
#include "host/ColorScript.h"
#include "host/FontScript.h"
#include "host/ParaStylesScript.h"
#include "inspection/ColorsFromIdml.h"
#include "inspection/FontFiles.h"
#include "inspection/FontsFromIdml.h"
#include "inspection/ParaStylesFromIdml.h"

using namespace quillon::inspection;

namespace quillon::host {

namespace {

app::Result<QString> runScript(const ScriptedDocument& document, const QString& source, const char* what)
{
    if (!document.run)
        return app::makeError(QStringLiteral("no script runner to ask InDesign for the %1").arg(QLatin1String(what)));
    auto answer = document.run(source);
    if (!answer) {
        app::logFailure(QStringLiteral("get the %1 of %2: %3")
                            .arg(QLatin1String(what), document.documentName, answer.error().text()));
        return answer.error();
    }
    return answer;
}

} // namespace

app::Result<Inspected<QVariantList>> processFontsFromIdml(const idml::IdmlDocument& document,
                                                          const QString& documentPath, const app::CancelFlag* cancel)
{
    app::logEntry("processFonts");
    FontFileFinder finder(documentPath);
    return fontRecordsFromIdml(document, finder, cancel);
}

std::unique_ptr<PartInspection<QVariantList>>
fontsFromIdmlParts(const idml::IdmlDocument& document, const QString& documentPath, const app::CancelFlag* cancel)
{
    return std::make_unique<FontsFromParts>(document, std::make_shared<FontFileFinder>(documentPath), cancel);
}

app::Result<Inspected<ColorInspection>> processColorsFromIdml(const idml::IdmlDocument& document,
                                                              const QString& registrationInTextFlag,
                                                              const app::CancelFlag* cancel)
{
    app::logEntry("processColors");
    return colorInspectionFromIdml(document, registrationInTextFlag, cancel);
}

app::Result<Inspected<QString>> paraReportFromIdml(const idml::IdmlDocument& document)
{
    app::logEntry("paraReport");
    auto styles = paraStyleUsesFromIdml(document);
    if (!styles)
        return styles.error();
    return Inspected<QString>{paraStylesReportText(styles->found), styles->skipped};
}

app::Result<QVariantList> processFontsWithScripts(const ScriptedDocument& document)
{
    app::logEntry("processFonts");
    auto answer = runScript(document, fontsScript(document.inDesignName, document.documentName), "fonts");
    if (!answer)
        return answer.error();
    return fontRecordsFromScriptAnswer(*answer);
}

app::Result<ColorInspection> processColorsWithScripts(const ScriptedDocument& document,
                                                      const QString& registrationInTextFlag)
{
    app::logEntry("processColors");
    auto answer = runScript(
        document, colorsScript(document.inDesignName, document.documentName, registrationInTextFlag), "swatches");
    if (!answer)
        return answer.error();
    return colorInspectionFromScriptAnswer(*answer);
}

app::Result<QString> paraReportWithScripts(const ScriptedDocument& document)
{
    app::logEntry("paraReport");
    auto answer =
        runScript(document, paraStylesScript(document.inDesignName, document.documentName), "paragraph styles");
    if (!answer)
        return answer.error();
    return paraStylesReportText(paraStyleUsesFromScriptAnswer(*answer));
}

} // namespace quillon::host
