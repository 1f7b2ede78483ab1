#pragma once

#include "app/Result.h"
#include "inspection/DocInfoTexts.h"
#include "inspection/DocumentRecord.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace quillon::idml {
class IdmlDocument;
}

namespace quillon::inspection {

// Keys of the document information as a record (reports, the batch's stored data, JSON).
inline const QString kDocInfoHasPreflightErrorsKey = QStringLiteral("hasPreflightErrors");
inline const QString kDocInfoDocNameKey = QStringLiteral("docName");
inline const QString kDocInfoDocPathKey = QStringLiteral("docPath");
inline const QString kDocInfoNumberOfPagesKey = QStringLiteral("numberOfPagesStr");
inline const QString kDocInfoInDesignVersionKey = QStringLiteral("InDesignVersion");
inline const QString kDocInfoFileSizeKey = QStringLiteral("fileSizeStr");
inline const QString kDocInfoCreationDateKey = QStringLiteral("creationDate");
inline const QString kDocInfoModDateKey = QStringLiteral("modDate");
inline const QString kDocInfoCreationDateStrKey = QStringLiteral("creationDateStr");
inline const QString kDocInfoModDateStrKey = QStringLiteral("modDateStr");
inline const QString kDocInfoPageSizesKey = QStringLiteral("docPageSizesDict");
inline const QString kDocInfoBleedKey = QStringLiteral("bleedStr");
inline const QString kDocInfoSlugKey = QStringLiteral("slugStr");
inline const QString kDocInfoHorizUnitsKey = QStringLiteral("horizMeasurementUnits");
inline const QString kDocInfoVertUnitsKey = QStringLiteral("vertMeasurementUnits");
// Keys of one page size in the record's "docPageSizesDict" list.
inline const QString kPageSizeWidthKey = QStringLiteral("width");
inline const QString kPageSizeHeightKey = QStringLiteral("height");
inline const QString kPageSizePageNamesKey = QStringLiteral("pageNames");

// One distinct page size of the document ("###0.####" texts, points) and the names of the pages
// having it, in the order met.
struct DocPageSize {
    QString width;
    QString height;
    QStringList pageNames;
};
using DocPageSizes = QList<DocPageSize>;

// The general facts of the preflighted document: name and path, pages, InDesign version, file
// size and dates, page sizes, ruler units, bleed and slug.
class QNDocInfo {
public:
    // A new document information with the driver's facts, its dates and size read at once.
    static QNDocInfo docInfoWithDocument(const QString& docPath, const QString& numberOfPagesStr,
                                         const QString& InDesignVersion, const QLocale& locale = QLocale());
    // The same from the host's document record.
    static QNDocInfo docInfoWithRecord(const DocumentRecord& record, const QLocale& locale = QLocale());

    // Reads the units, bleed and slug of the document's IDML ("Resources/Preferences.xml").
    // Without that part the units are "Points" and bleed and slug "-"; when the part is listed but
    // cannot be read the same, and the error names the part.
    app::Status parseDocInfoInDocument(const idml::IdmlDocument& document);

    // The file's dates in the locale's short date and time; empty when they cannot be read.
    void setDates(const QLocale& locale = QLocale());
    void setFileSize();
    void setBleedOrSlug(bool bleed, const QString& text);

    bool hasPreflightErrors() const { return m_hasPreflightErrors; }
    void setHasPreflightErrors(bool value) { m_hasPreflightErrors = value; }
    const QString& docName() const { return m_docName; }
    const QString& docPath() const { return m_docPath; }
    const QString& numberOfPagesStr() const { return m_numberOfPagesStr; }
    const QString& InDesignVersion() const { return m_InDesignVersion; }
    const QString& fileSizeStr() const { return m_fileSizeStr; }
    qint64 fileSize() const { return m_fileSize; }
    const QDateTime& creationDate() const { return m_creationDate; }
    const QDateTime& modDate() const { return m_modDate; }
    const QString& creationDateStr() const { return m_creationDateStr; }
    const QString& modDateStr() const { return m_modDateStr; }
    const PageSizesDict& docPageSizesDict() const { return m_docPageSizesDict; }
    // Sets the sizes; their order is then the dictionary's.
    void setDocPageSizesDict(const PageSizesDict& sizes);
    // The sizes in the order they were met in the spreads (the dictionary's order when they were
    // given as a dictionary).
    const DocPageSizes& docPageSizes() const { return m_docPageSizes; }
    void setDocPageSizes(const DocPageSizes& sizes);
    const QString& bleedStr() const { return m_bleedStr; }
    const QString& slugStr() const { return m_slugStr; }
    // The narrowest side of the bleed and of the slug in points; nothing when the document's
    // preferences could not be read.
    std::optional<double> bleedPoints() const;
    std::optional<double> slugPoints() const;
    // The attributes the bleed and slug texts were made from (points); empty without preferences.
    const BleedOrSlugValues& bleedValues() const { return m_bleedValues; }
    const BleedOrSlugValues& slugValues() const { return m_slugValues; }
    const QString& horizMeasurementUnits() const { return m_horizMeasurementUnits; }
    const QString& vertMeasurementUnits() const { return m_vertMeasurementUnits; }

    // The page-size text of the box for these page sizes and units.
    QString pageSizeStr() const;

    QVariantMap toVariantMap() const;

private:
    bool m_hasPreflightErrors = false;
    QString m_docName;
    QString m_docPath;
    QString m_numberOfPagesStr;
    QString m_InDesignVersion;
    QString m_fileSizeStr;
    qint64 m_fileSize = 0;
    QDateTime m_creationDate;
    QDateTime m_modDate;
    QString m_creationDateStr;
    QString m_modDateStr;
    PageSizesDict m_docPageSizesDict;
    DocPageSizes m_docPageSizes;
    QString m_bleedStr;
    QString m_slugStr;
    bool m_hasDocumentPreference = false; // the bleed and slug values were read
    BleedOrSlugValues m_bleedValues;
    BleedOrSlugValues m_slugValues;
    QString m_horizMeasurementUnits;
    QString m_vertMeasurementUnits;
};

} // namespace quillon::inspection
