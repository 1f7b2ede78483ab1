#include "results/Summary.h"

#include "results/ResultKeys.h"

#include <gtest/gtest.h>

namespace quillon::results {
namespace {

QVariantMap withAlerts(QVariantMap record, const QStringList& alertedKeys)
{
    QVariantMap alerts;
    for (const QString& key : alertedKeys)
        alerts.insert(key, QStringList{QStringLiteral("text"), QStringLiteral("second text")});
    record.insert(kAlertsKey, alerts);
    return record;
}

QString bytesAsText(std::uint64_t bytes)
{
    return QString::number(bytes) + QStringLiteral(" B");
}

QString valueOf(QNSummaryOutlineController& summary, const QString& section, const QString& row)
{
    QNSummaryItem* s = summary.sectionItemWithTitle(section);
    if (!s)
        return QStringLiteral("<no section>");
    QNSummaryItem* r = QNSummaryOutlineController::childWithTitle(row, s->children);
    return r ? r->value : QStringLiteral("<no row>");
}

TEST(Summary, StatusLineCountsAttributesNotTexts)
{
    const QVariantList fonts{withAlerts({}, {QStringLiteral("name"), QStringLiteral("status")}),
                             withAlerts({}, {QStringLiteral("type")}), withAlerts({}, {})};
    const QVariantList links{withAlerts({}, {QStringLiteral("eres")})};
    const PreflightStatus status =
        QNSummaryOutlineController::loadPreflightStatusResults(fonts, {withAlerts({}, {})}, links);
    EXPECT_EQ(status.text, QStringLiteral("4 errors found: Fonts: 3 \u2022 Links: 1"));
    EXPECT_TRUE(status.hasPreflightErrors);

    const PreflightStatus clean = QNSummaryOutlineController::loadPreflightStatusResults({}, {}, {});
    EXPECT_EQ(clean.text, QStringLiteral("No errors found"));
    EXPECT_FALSE(clean.hasPreflightErrors);
}

TEST(Summary, ErrorFlagComesFromTheLowByte)
{
    QVariantList links;
    for (int i = 0; i < 256; ++i)
        links.append(withAlerts({}, {QStringLiteral("size")}));
    const PreflightStatus status = QNSummaryOutlineController::loadPreflightStatusResults({}, {}, links);
    EXPECT_EQ(status.text, QStringLiteral("256 errors found: Links: 256"));
    EXPECT_FALSE(status.hasPreflightErrors);
    links.append(withAlerts({}, {QStringLiteral("size")}));
    EXPECT_TRUE(QNSummaryOutlineController::loadPreflightStatusResults({}, {}, links).hasPreflightErrors);
    links.resize(254); // the byte reads negative, which is still an error
    EXPECT_TRUE(QNSummaryOutlineController::loadPreflightStatusResults({}, {}, links).hasPreflightErrors);
}

TEST(Summary, SectionsCountByTheirRules)
{
    QNSummaryOutlineController summary;
    summary.startup();
    const QVariantList fonts{
        QVariantMap{{QStringLiteral("status"), QStringLiteral("missing")},
                    {QStringLiteral("type"), QStringLiteral("type 1")}},
        QVariantMap{{QStringLiteral("status"), QStringLiteral("installed")},
                    {QStringLiteral("type"), QStringLiteral("OpenType TrueType")}},
        QVariantMap{{QStringLiteral("status"), QStringLiteral("installed")}, {QStringLiteral("type"), 7}}};
    const QVariantList colors{QVariantMap{{QStringLiteral("spot"), QStringLiteral("spot")},
                                          {QStringLiteral("space"), QStringLiteral("CMYK")}},
                              QVariantMap{{QStringLiteral("spot"), QStringLiteral("process")},
                                          {QStringLiteral("space"), QStringLiteral("RGB")}}};
    const QVariantList links{QVariantMap{{QStringLiteral("path"), QStringLiteral("/a.tif")},
                                         {QStringLiteral("status"), QStringLiteral("Missing")},
                                         {QStringLiteral("color"), QStringLiteral("CMYK + Spot")},
                                         {QStringLiteral("sizebytes"), 0}},
                             QVariantMap{{QStringLiteral("path"), QStringLiteral("/a.tif")},
                                         {QStringLiteral("status"), QStringLiteral("OK")},
                                         {QStringLiteral("color"), QStringLiteral("Indexed RGB")},
                                         {QStringLiteral("sizebytes"), 0}}};
    SummaryDocumentInfo doc;
    doc.docName = QStringLiteral("brochure.indd");
    doc.numberOfPagesStr = QStringLiteral("12");
    summary.loadSummary(doc, fonts, colors, links, bytesAsText);

    EXPECT_EQ(valueOf(summary, QStringLiteral("Document"), QStringLiteral("Pages")), QStringLiteral("12"));
    EXPECT_EQ(valueOf(summary, QStringLiteral("Fonts"), QStringLiteral("Missing")), QStringLiteral("1"));
    // "type 1" is not counted by the case-sensitive "Type 1" test; "OpenType TrueType" counts twice.
    EXPECT_EQ(valueOf(summary, QStringLiteral("Fonts"), QStringLiteral("Type 1")), QStringLiteral("0"));
    EXPECT_EQ(valueOf(summary, QStringLiteral("Fonts"), QStringLiteral("TrueType")), QStringLiteral("1"));
    EXPECT_EQ(valueOf(summary, QStringLiteral("Fonts"), QStringLiteral("OpenType")), QStringLiteral("1"));
    EXPECT_EQ(valueOf(summary, QStringLiteral("Colors"), QStringLiteral("Spot")), QStringLiteral("1"));
    EXPECT_EQ(valueOf(summary, QStringLiteral("Colors"), QStringLiteral("RGB")), QStringLiteral("1"));
    EXPECT_EQ(valueOf(summary, QStringLiteral("Links"), QStringLiteral("Unique")), QStringLiteral("1"));
    EXPECT_EQ(valueOf(summary, QStringLiteral("Links"), QStringLiteral("CMYK")), QStringLiteral("1"));
    EXPECT_EQ(valueOf(summary, QStringLiteral("Links"), QStringLiteral("RGB")), QStringLiteral("1"));
    EXPECT_EQ(valueOf(summary, QStringLiteral("Links"), QStringLiteral("Total Size")), QStringLiteral("-"));

    EXPECT_EQ(summary.toVariantMap().value(QStringLiteral("Links")).toMap().value(QStringLiteral("Unique")).toString(),
              QStringLiteral("1"));
    summary.clear();
    EXPECT_EQ(valueOf(summary, QStringLiteral("Links"), QStringLiteral("Total")), QString());
}

TEST(Summary, TotalSizeAndDisplayedValues)
{
    const QVariantList links{QVariantMap{{QStringLiteral("sizebytes"), QVariant::fromValue<quint64>(3000000000ULL)}},
                             QVariantMap{{QStringLiteral("sizebytes"), QVariant::fromValue<quint64>(3000000000ULL)}}};
    EXPECT_EQ(
        QNSummaryOutlineController::totalFileSizeFromDictsInArray(links, QStringLiteral("sizebytes"), bytesAsText),
        QStringLiteral("6000000000 B"));

    const QNSummaryItem zero{QStringLiteral("Missing"), QStringLiteral("0"), {}};
    EXPECT_EQ(QNSummaryOutlineController::objectValueForColumn(zero, QStringLiteral("value")), QStringLiteral("-"));
}

TEST(Summary, CountingHelpers)
{
    const QVariantList rows{QVariantMap{{QStringLiteral("k"), QStringLiteral("CMYK RGB")}},
                            QVariantMap{{QStringLiteral("k"), QStringLiteral("cmyk")}},
                            QVariantMap{{QStringLiteral("k"), 5}}};
    const auto counts = QNSummaryOutlineController::countDictsWhoseValueForKey(
        QStringLiteral("k"), {QStringLiteral("CM"), QStringLiteral("RG"), QStringLiteral("Lab")}, rows);
    EXPECT_EQ(counts.value(QStringLiteral("CM")), 1);
    EXPECT_TRUE(counts.contains(QStringLiteral("Lab")));
}

} // namespace
} // namespace quillon::results
