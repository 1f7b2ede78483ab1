#include "host/InDesignHost.h"

#include "app/AppPaths.h"
#include "app/Strings.h"
#include "idml/IdmlDocument.h"

namespace quillon::host {

QString DocumentReference::scriptText() const
{
    if (isActive())
        return QStringLiteral("active document");
    return QStringLiteral("document \"%1\"").arg(app::stringByEscapingCharacters(m_name, {QStringLiteral("\"")}));
}

std::shared_ptr<const idml::IdmlDocument> InDesignHost::idmlDocument(const QString& idmlPath)
{
    (void)idmlPath;
    return nullptr;
}

std::unique_ptr<inspection::PartInspection<QVariantList>>
InDesignHost::fontsFromParts(const inspection::DocumentRecord& record, const idml::IdmlDocument& document,
                             const app::CancelFlag* cancel)
{
    (void)record, (void)document, (void)cancel;
    return nullptr;
}

std::unique_ptr<inspection::PartInspection<inspection::ColorInspection>>
InDesignHost::colorsFromParts(const inspection::DocumentRecord& record, const idml::IdmlDocument& document,
                              const QString& registrationInTextFlag, const app::CancelFlag* cancel)
{
    (void)record, (void)document, (void)registrationInTextFlag, (void)cancel;
    return nullptr;
}

app::Status InDesignHost::showLinkID(const QString& linkId, const QString& docName)
{
    return app::makeError(QStringLiteral("Selecting link %1 is not available with %2.").arg(linkId, applicationName()),
                          docName);
}

app::Status InDesignHost::relinkLinkID(const QString& linkId, const QString& path, const QString& docName)
{
    return app::makeError(
        QStringLiteral("Relinking link %1 to %2 is not available with %3.").arg(linkId, path, applicationName()),
        docName);
}

app::Status InDesignHost::relinkLinksInDoc(const QString& docPath, const QString& linksFolder, bool createIdml)
{
    (void)createIdml;
    return app::makeError(
        QStringLiteral("Relinking to the files in %1 is not available with %2.").arg(linksFolder, applicationName()),
        docPath);
}

} // namespace quillon::host
