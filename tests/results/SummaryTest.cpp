#include "results/Summary.h"

#include "results/ResultKeys.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quillon::results {
namespace {

QVariantMap withAlerts(QVariantMap record, const QStringList& alertedKeys)
{
    QVariantMap alerts;
    for (const QString& key : alertedKeys)
        alerts.insert(key, QStringList{u"text"_s, u"second text"_s});
    record.insert(kAlertsKey, alerts);
    return record;
}

QString bytesAsText(std::uint64_t bytes)
{
    return QString::number(bytes) + u" B"_s;
}

QString valueOf(QNSummaryOutlineController& summary, const QString& section, const QString& row)
{
    QNSummaryItem* s = summary.sectionItemWithTitle(section);
    if (!s)
        return u"<no section>"_s;
    QNSummaryItem* r = QNSummaryOutlineController::childWithTitle(row, s->children);
    return r ? r->value : u"<no row>"_s;
}

TEST(Summary, StatusLineCountsAttributesNotTextsAndItsFlagTheLowByte)
{
    const QVariantList fonts{withAlerts({}, {u"name"_s, u"status"_s}), withAlerts({}, {u"type"_s}), withAlerts({}, {})};
    const QVariantList alertedLinks{withAlerts({}, {u"eres"_s})};
    const PreflightStatus status =
        QNSummaryOutlineController::loadPreflightStatusResults(fonts, {withAlerts({}, {})}, alertedLinks, 2);
    EXPECT_EQ(status.text, u"6 errors found: Document: 2 \u2022 Fonts: 3 \u2022 Links: 1"_s);
    EXPECT_TRUE(status.hasPreflightErrors);

    const PreflightStatus clean = QNSummaryOutlineController::loadPreflightStatusResults({}, {}, {});
    EXPECT_EQ(clean.text, u"No errors found"_s);
    EXPECT_FALSE(clean.hasPreflightErrors);

    // The flag comes from the low byte of the total.
    QVariantList links;
    for (int i = 0; i < 256; ++i)
        links.append(withAlerts({}, {u"size"_s}));
    const PreflightStatus wrapped = QNSummaryOutlineController::loadPreflightStatusResults({}, {}, links);
    EXPECT_EQ(wrapped.text, u"256 errors found: Links: 256"_s);
    EXPECT_FALSE(wrapped.hasPreflightErrors);
    links.append(withAlerts({}, {u"size"_s}));
    EXPECT_TRUE(QNSummaryOutlineController::loadPreflightStatusResults({}, {}, links).hasPreflightErrors);
    links.resize(254); // the byte reads negative, which is still an error
    EXPECT_TRUE(QNSummaryOutlineController::loadPreflightStatusResults({}, {}, links).hasPreflightErrors);
}

TEST(Summary, SectionsCountByTheirRules)
{
    QNSummaryOutlineController summary;
    summary.startup();
    const QVariantList fonts{QVariantMap{{u"status"_s, u"missing"_s}, {u"type"_s, u"type 1"_s}},
                             QVariantMap{{u"status"_s, u"installed"_s}, {u"type"_s, u"OpenType TrueType"_s}},
                             QVariantMap{{u"status"_s, u"installed"_s}, {u"type"_s, 7}}};
    const QVariantList colors{QVariantMap{{u"spot"_s, u"spot"_s}, {u"space"_s, u"CMYK"_s}},
                              QVariantMap{{u"spot"_s, u"process"_s}, {u"space"_s, u"RGB"_s}}};
    const QVariantList links{
        QVariantMap{
            {u"path"_s, u"/a.tif"_s}, {u"status"_s, u"Missing"_s}, {u"color"_s, u"CMYK + Spot"_s}, {u"sizebytes"_s, 0}},
        QVariantMap{
            {u"path"_s, u"/a.tif"_s}, {u"status"_s, u"OK"_s}, {u"color"_s, u"Indexed RGB"_s}, {u"sizebytes"_s, 0}}};
    SummaryDocumentInfo doc;
    doc.docName = u"brochure.indd"_s;
    doc.numberOfPagesStr = u"12"_s;
    summary.loadSummary(doc, fonts, colors, links, bytesAsText);

    EXPECT_EQ(valueOf(summary, u"Document"_s, u"Pages"_s), u"12"_s);
    EXPECT_EQ(valueOf(summary, u"Fonts"_s, u"Missing"_s), u"1"_s);
    // "type 1" is not counted by the case-sensitive "Type 1" test; "OpenType TrueType" counts twice.
    EXPECT_EQ(valueOf(summary, u"Fonts"_s, u"Type 1"_s), u"0"_s);
    EXPECT_EQ(valueOf(summary, u"Fonts"_s, u"TrueType"_s), u"1"_s);
    EXPECT_EQ(valueOf(summary, u"Fonts"_s, u"OpenType"_s), u"1"_s);
    EXPECT_EQ(valueOf(summary, u"Colors"_s, u"Spot"_s), u"1"_s);
    EXPECT_EQ(valueOf(summary, u"Colors"_s, u"RGB"_s), u"1"_s);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"Unique"_s), u"1"_s);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"CMYK"_s), u"1"_s);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"RGB"_s), u"1"_s);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"Total Size"_s), u"-"_s);

    EXPECT_EQ(summary.toVariantMap().value(u"Links"_s).toMap().value(u"Unique"_s).toString(), u"1"_s);
    summary.clear();
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"Total"_s), QString());
}

// Thousands of links are counted side by side: every count comes out the same as one by one,
// whatever worker a record fell to, and a row that is not a record counts for nothing.
TEST(Summary, LongListsCountEveryRowOnce)
{
    constexpr int kLinks = 9001;
    QVariantList links;
    for (int i = 0; i < kLinks; ++i)
        links.append(withAlerts(QVariantMap{{u"path"_s, u"/job/%1.tif"_s.arg(i % 3000)},
                                            {u"status"_s, i % 3 == 0 ? u"Missing"_s : u"Modified"_s},
                                            {u"color"_s, i % 2 == 0 ? u"CMYK"_s : u"RGB"_s},
                                            {u"sizebytes"_s, QVariant::fromValue<quint64>(1000)}},
                                (i % 5 == 0) ? QStringList{u"size"_s, u"eres"_s} : QStringList{}));
    links.append(u"not a record"_s);
    QNSummaryOutlineController summary;
    summary.startup();
    const PreflightStatus status = summary.loadSummary({}, {}, {}, links, bytesAsText);
    EXPECT_EQ(status.links, 2 * 1801);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"Unique"_s), u"3000"_s);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"Missing"_s), u"3001"_s);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"Modified"_s), u"6000"_s);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"CMYK"_s), u"4501"_s);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"RGB"_s), u"4500"_s);
    EXPECT_EQ(valueOf(summary, u"Links"_s, u"Total Size"_s), u"9001000 B"_s);
}

TEST(Summary, TotalSizeAndDisplayedValues)
{
    const QVariantList links{QVariantMap{{u"sizebytes"_s, QVariant::fromValue<quint64>(3000000000ULL)}},
                             QVariantMap{{u"sizebytes"_s, QVariant::fromValue<quint64>(3000000000ULL)}}};
    EXPECT_EQ(QNSummaryOutlineController::totalFileSizeFromDictsInArray(links, u"sizebytes"_s, bytesAsText),
              u"6000000000 B"_s);

    const QNSummaryItem zero{u"Missing"_s, u"0"_s, {}};
    EXPECT_EQ(QNSummaryOutlineController::objectValueForColumn(zero, u"value"_s), u"-"_s);
}

} // namespace
} // namespace quillon::results
