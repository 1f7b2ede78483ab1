#pragma once

#include "app/Result.h"
#include "host/FontColorScripts.h"
#include "inspection/ColorInspection.h"
#include "inspection/PartInspection.h"

#include <QString>

#include <memory>

namespace quillon::app {
class CancelFlag;
}

namespace quillon::host {

// The font inspection (`processFonts:`), the colour inspection (`processColors:`) and the
// paragraph-styles report (`paraReport:`) of one document, as each host runs them. The two
// inspections return their records (the driver writes the data files from them); the report
// returns its text. They run on the preflight's worker
// thread; errors name the file or the script that failed and leave the data file as it was.

// The offline host: from the document's IDML. `documentPath` is the document's own file, beside
// which a "Document fonts" folder may hold fonts of its own. The parts that could not be read
// were skipped: the answer names them.
app::Result<inspection::Inspected<QVariantList>> processFontsFromIdml(const idml::IdmlDocument& document,
                                                                      const QString& documentPath,
                                                                      const app::CancelFlag* cancel = nullptr);
// The font inspection as a reader of the stories in a pass over the parts.
std::unique_ptr<inspection::PartInspection<QVariantList>> fontsFromIdmlParts(const idml::IdmlDocument& document,
                                                                             const QString& documentPath,
                                                                             const app::CancelFlag* cancel = nullptr);
app::Result<inspection::Inspected<inspection::ColorInspection>>
processColorsFromIdml(const idml::IdmlDocument& document, const QString& registrationInTextFlag,
                      const app::CancelFlag* cancel = nullptr);
app::Result<inspection::Inspected<QString>> paraReportFromIdml(const idml::IdmlDocument& document);

// The AppleScript host: scripts sent to `inDesignName` about the open document `documentName`.
struct ScriptedDocument {
    ScriptTextRunner run;
    QString inDesignName; // the application name every "tell application" uses
    QString documentName; // the document's file name, as InDesign names it
    QString documentPath; // its POSIX path, the data files' key
};
app::Result<QVariantList> processFontsWithScripts(const ScriptedDocument& document);
app::Result<inspection::ColorInspection> processColorsWithScripts(const ScriptedDocument& document,
                                                                  const QString& registrationInTextFlag);
app::Result<QString> paraReportWithScripts(const ScriptedDocument& document);

} // namespace quillon::host
