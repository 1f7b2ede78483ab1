#include "inspection/DocInfo.h"

#include "app/Log.h"
#include "app/Numbers.h"
#include "idml/IdmlDocument.h"
#include "inspection/DocumentRecord.h"

#include <QDir>
#include <QFileInfo>
#include <QVariantList>

#include <pugixml.hpp>

using namespace quillon::idml;

namespace quillon::inspection {

namespace {

QString attribute(const pugi::xml_node node, const char* name)
{
    return QString::fromUtf8(node.attribute(name).value());
}

BleedOrSlugValues bleedOrSlugValues(const pugi::xml_node preference, bool bleed)
{
    if (bleed)
        return {attribute(preference, "DocumentBleedTopOffset"), attribute(preference, "DocumentBleedUniformSize"),
                attribute(preference, "DocumentBleedBottomOffset"),
                attribute(preference, "DocumentBleedInsideOrLeftOffset"),
                attribute(preference, "DocumentBleedOutsideOrRightOffset")};
    // The slug's last attribute says "RightOrOutside" where the bleed's says "OutsideOrRight".
    return {attribute(preference, "SlugTopOffset"), attribute(preference, "DocumentSlugUniformSize"),
            attribute(preference, "SlugBottomOffset"), attribute(preference, "SlugInsideOrLeftOffset"),
            attribute(preference, "SlugRightOrOutsideOffset")};
}

} // namespace

QNDocInfo QNDocInfo::docInfoWithDocument(const QString& docPath, const QString& numberOfPagesStr,
                                         const QString& InDesignVersion, const QLocale& locale)
{
    QNDocInfo info;
    info.m_docPath = docPath;
    info.m_docName = QFileInfo(docPath).fileName();
    info.m_numberOfPagesStr = numberOfPagesStr;
    info.m_InDesignVersion = InDesignVersion;
    info.setDates(locale);
    info.setFileSize();
    return info;
}

QNDocInfo QNDocInfo::docInfoWithRecord(const DocumentRecord& record, const QLocale& locale)
{
    return docInfoWithDocument(record.posixPath, record.pageCount, record.InDesignVersion, locale);
}

void QNDocInfo::setDates(const QLocale& locale)
{
    const QFileInfo file(m_docPath);
    if (!file.exists()) {
        app::logFailure(QStringLiteral("get doc dates: %1").arg(m_docPath));
        m_creationDate = m_modDate = QDateTime();
        m_creationDateStr = m_modDateStr = QString();
        return;
    }
    // Not every file system records when a file was made.
    m_creationDate = file.birthTime();
    m_modDate = file.lastModified();
    m_creationDateStr = m_creationDate.isValid() ? locale.toString(m_creationDate, QLocale::ShortFormat) : QString();
    m_modDateStr = m_modDate.isValid() ? locale.toString(m_modDate, QLocale::ShortFormat) : QString();
}

void QNDocInfo::setFileSize()
{
    const QFileInfo file(m_docPath);
    m_fileSize = file.exists() ? file.size() : 0;
    m_fileSizeStr = app::fileSizeStrFromBytes(static_cast<quint64>(m_fileSize));
}

void QNDocInfo::setBleedOrSlug(bool bleed, const QString& text)
{
    (bleed ? m_bleedStr : m_slugStr) = text;
}

std::optional<double> QNDocInfo::bleedPoints() const
{
    return m_hasDocumentPreference ? std::optional(narrowestSideInPoints(m_bleedValues)) : std::nullopt;
}

std::optional<double> QNDocInfo::slugPoints() const
{
    return m_hasDocumentPreference ? std::optional(narrowestSideInPoints(m_slugValues)) : std::nullopt;
}

app::Status QNDocInfo::parseDocInfoInDocument(const idml::IdmlDocument& document)
{
    app::logLine(QStringLiteral("> parseDocInfoInIDMLFolderAtPath: %1").arg(document.name()));
    const QString& path = document.preferences();
    std::shared_ptr<const idml::XmlPart> preferences;
    app::Status read;
    // A package without preferences is not damaged: some tools write none.
    if (!path.isEmpty()) {
        app::Result<std::shared_ptr<const idml::XmlPart>> part = document.part(path);
        if (part)
            preferences = *part;
        else
            read = part.error();
    }
    const pugi::xml_node root = preferences ? preferences->root() : pugi::xml_node();

    const pugi::xml_node view = root.child("ViewPreference");
    if (view) {
        m_horizMeasurementUnits = attribute(view, "HorizontalMeasurementUnits");
        m_vertMeasurementUnits = attribute(view, "VerticalMeasurementUnits");
    } else {
        app::logFailure(QStringLiteral("get ViewPreference nodes: %1").arg(path));
        m_horizMeasurementUnits = m_vertMeasurementUnits = QStringLiteral("Points");
    }

    const pugi::xml_node preference = root.child("DocumentPreference");
    if (!preference) {
        app::logFailure(QStringLiteral("get DocumentPreference nodes: %1").arg(path));
        m_bleedStr = m_slugStr = QStringLiteral("-");
        m_hasDocumentPreference = false;
        return read;
    }
    m_bleedValues = bleedOrSlugValues(preference, true);
    m_slugValues = bleedOrSlugValues(preference, false);
    setBleedOrSlug(true, bleedOrSlugText(m_bleedValues, m_horizMeasurementUnits));
    setBleedOrSlug(false, bleedOrSlugText(m_slugValues, m_horizMeasurementUnits));
    m_hasDocumentPreference = true;
    return read;
}

void QNDocInfo::setDocPageSizesDict(const PageSizesDict& sizes)
{
    m_docPageSizesDict = sizes;
    m_docPageSizes.clear();
    for (auto it = sizes.cbegin(); it != sizes.cend(); ++it)
        m_docPageSizes.append({it.key().value(0), it.key().value(1), it.value()});
}

void QNDocInfo::setDocPageSizes(const DocPageSizes& sizes)
{
    m_docPageSizes = sizes;
    m_docPageSizesDict.clear();
    for (const DocPageSize& size : sizes)
        m_docPageSizesDict[{size.width, size.height}] += size.pageNames;
}

QString QNDocInfo::pageSizeStr() const
{
    return pageSizeText(m_docPageSizesDict, m_horizMeasurementUnits, m_vertMeasurementUnits);
}

QVariantMap QNDocInfo::toVariantMap() const
{
    QVariantList sizes;
    for (const DocPageSize& size : m_docPageSizes)
        sizes << QVariantMap{{kPageSizeWidthKey, size.width},
                             {kPageSizeHeightKey, size.height},
                             {kPageSizePageNamesKey, size.pageNames}};
    return {
        {kDocInfoHasPreflightErrorsKey, m_hasPreflightErrors},
        {kDocInfoDocNameKey, m_docName},
        {kDocInfoDocPathKey, m_docPath},
        {kDocInfoNumberOfPagesKey, m_numberOfPagesStr},
        {kDocInfoInDesignVersionKey, m_InDesignVersion},
        {kDocInfoFileSizeKey, m_fileSizeStr},
        {kDocInfoCreationDateKey, m_creationDate},
        {kDocInfoModDateKey, m_modDate},
        {kDocInfoCreationDateStrKey, m_creationDateStr},
        {kDocInfoModDateStrKey, m_modDateStr},
        {kDocInfoPageSizesKey, sizes},
        {kDocInfoBleedKey, m_bleedStr},
        {kDocInfoSlugKey, m_slugStr},
        {kDocInfoHorizUnitsKey, m_horizMeasurementUnits},
        {kDocInfoVertUnitsKey, m_vertMeasurementUnits},
    };
}

} // namespace quillon::inspection
