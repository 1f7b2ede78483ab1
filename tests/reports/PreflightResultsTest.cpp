#include "reports/PreflightResults.h"

#include "app/PropertyList.h"
#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "results/PresetKeys.h"
#include "results/ResultKeys.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon;
using namespace quillon::reports;

namespace {

const QString kDocPath = u"/Jobs/Brochure.idml"_s;

QVariantMap dataFile(const QVariantList& records)
{
    return {{kDocPath, QVariantMap{{app::kGroupNameKey, u"Brochure.idml"_s},
                                   {app::kGroupIsDockKey, true},
                                   {app::kGroupChildrenKey, records}}}};
}

QVariantMap missingRule()
{
    return {{u"attribute"_s, u"Status"_s},
            {u"attributeKey"_s, u"status"_s},
            {u"condition"_s, u"is"_s},
            {u"value"_s, u"Missing"_s}};
}

QVariantMap strictPreset()
{
    return {{results::kPresetNameKey, u"Strict"_s},
            {results::kPresetFontsKey, QVariantMap{{results::kConditionsKey, QVariantList{missingRule()}}}},
            {results::kPresetLinksKey, QVariantMap{{results::kConditionsKey, QVariantList{missingRule()}}}},
            {results::kPresetColorsKey, QVariantMap{{u"RGB"_s, 1}, {u"regAppliedToText"_s, 1}}}};
}

class PreflightResultsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        const QDir dir(m_dir.path());
        ASSERT_TRUE(app::writePropertyListFile(dataFile({QVariantMap{{u"name"_s, u"Lost.tif"_s},
                                                                     {u"path"_s, u"/Jobs/Links/Lost.tif"_s},
                                                                     {u"status"_s, u"Missing"_s},
                                                                     {u"sizebytes"_s, 0}}}),
                                               dir.filePath(app::kLinkDataFileName)));
        ASSERT_TRUE(app::writePropertyListFile(
            dataFile({QVariantMap{
                {u"name"_s, u"Minion Pro Regular"_s}, {u"type"_s, u"OpenType CFF"_s}, {u"status"_s, u"missing"_s}}}),
            dir.filePath(app::kFontDataFileName)));
        ASSERT_TRUE(app::writePropertyListFile(dataFile({QVariantMap{{u"name"_s, u"Web Blue"_s},
                                                                     {u"spot"_s, u"process"_s},
                                                                     {u"space"_s, u"RGB"_s},
                                                                     {u"colValuesList"_s, QVariantList{0, 102, 204}},
                                                                     {u"used"_s, u"√"_s}}}),
                                               dir.filePath(app::kColorDataFileName)));
    }

    QString settingsFile() const { return m_dir.filePath(u"settings.ini"_s); }

    inspection::QNDocInfo docInfo() const
    {
        return inspection::QNDocInfo::docInfoWithRecord(
            {QString(), kDocPath, u"Brochure.idml"_s, u"4"_s, u"0"_s, u"20.0"_s});
    }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(PreflightResultsTest, LoadsTheDataFilesJudgesThemAndCountsTheAlerts)
{
    int presetReads = 0;
    PreflightResults results([&presetReads] {
        ++presetReads;
        return std::optional<QVariantMap>(strictPreset());
    });
    EXPECT_EQ(results.registrationInTextFlag(), u"1"_s);

    results.setItems(m_dir.path());
    EXPECT_EQ(presetReads, 1); // a preflight reads its preset once, as it starts
    results.setItems(m_dir.path());
    EXPECT_EQ(presetReads, 2); // a load of its own reads it afresh
    ASSERT_EQ(results.linkItems().size(), 1);
    ASSERT_EQ(results.fontItems().size(), 1);
    ASSERT_EQ(results.colorItems().size(), 1);

    inspection::QNDocInfo info = docInfo();
    results.populateSummaryAndDocInfo(info);
    EXPECT_EQ(results.status().text, u"3 errors found: Fonts: 1 \u2022 Colors: 1 \u2022 Links: 1"_s);
    EXPECT_TRUE(info.hasPreflightErrors());
    const QVariantMap summary = results.summary().toVariantMap();
    EXPECT_EQ(summary.value(u"Links"_s).toMap().value(u"Missing"_s).toString(), u"1"_s);

    // Without a preset nothing is judged.
    PreflightResults unjudged([] { return std::optional<QVariantMap>(); });
    unjudged.setItems(m_dir.path());
    unjudged.populateSummaryAndDocInfo(info);
    EXPECT_EQ(unjudged.status().total, 0);
    EXPECT_FALSE(info.hasPreflightErrors());

    // Clearing empties the lists and the summary.
    results.clearAllResults();
    EXPECT_TRUE(results.linkItems().isEmpty() && results.fontItems().isEmpty() && results.colorItems().isEmpty());
}

TEST_F(PreflightResultsTest, ChangingThePresetWithEmptyListsOnlyStoresIt)
{
    int presetReads = 0;
    PreflightResults results([&presetReads] {
        ++presetReads;
        return std::optional<QVariantMap>(strictPreset());
    });
    results.setSettingsFile(settingsFile());
    results.presetsPopup(u"Print"_s);
    EXPECT_EQ(app::Settings(settingsFile()).value(u"selectedPreset"_s).toString(), u"Print"_s);
    EXPECT_EQ(presetReads, 0);
    EXPECT_TRUE(results.linkItems().isEmpty());
}

TEST_F(PreflightResultsTest, ChangingThePresetJudgesWhatIsShownAgain)
{
    QVariantMap current = strictPreset();
    PreflightResults results([&current] { return std::optional<QVariantMap>(current); });
    results.setSettingsFile(settingsFile());
    results.setItems(m_dir.path());
    EXPECT_TRUE(results::hasAlerts(results.linkItems().front().toMap()));

    current = QVariantMap{{results::kPresetNameKey, u"Lenient"_s}};
    results.presetsPopup(u"Lenient"_s);
    EXPECT_FALSE(results::hasAlerts(results.linkItems().front().toMap()));
    EXPECT_FALSE(results::hasAlerts(results.colorItems().front().toMap()));
}

TEST_F(PreflightResultsTest, TheReportIsWrittenInTheChosenLayoutAtTheGivenTime)
{
    PreflightResults results(PreflightResults::fixedPreset(strictPreset()));
    const QDateTime when(QDate(2026, 1, 15), QTime(10, 0));
    results.setClock([when] { return when; });
    results.setItems(m_dir.path());
    const inspection::QNDocInfo info = docInfo();

    EXPECT_FALSE(results.createTextReport(QString(), QString(), info));
    const QString out = m_dir.filePath(u"out"_s);
    QDir().mkpath(out);
    app::Result<QString> regular = results.createTextReport(out, QString(), info);
    ASSERT_TRUE(regular) << regular.error().text().toStdString();
    EXPECT_EQ(*regular, out + u"/Brochure.idml_Quillon_Report.txt"_s);
    EXPECT_EQ(QString::fromUtf8(test::readAll(*regular)), results.textReport(TextReportType::Regular, QString(), info));
    EXPECT_TRUE(QString::fromUtf8(test::readAll(*regular)).contains(QLatin1String("\nStatus: Missing\n")));

    results.setTextReportType(TextReportType::TabDelimited);
    app::Result<QString> tab = results.createTextReport(out, u"Body: 3 paragraphs"_s, info);
    ASSERT_TRUE(tab);
    const QString text = QString::fromUtf8(test::readAll(*tab));
    EXPECT_EQ(text, results.textReport(TextReportType::TabDelimited, u"Body: 3 paragraphs"_s, info));
    EXPECT_TRUE(text.contains(QLatin1String("\tPDF Embedding\n")));
    EXPECT_TRUE(text.contains(u"Report date: %1\n"_s.arg(QLocale().toString(when, QLocale::ShortFormat))));
}

TEST(TextReportType, TheSavePanelRemembersTheChosenLayout)
{
    QTemporaryDir dir;
    app::Settings settings(dir.filePath(u"s.ini"_s));
    EXPECT_EQ(preselectedTextReportTypeTitle(settings), u"Regular"_s);
    rememberTextReportTypeTitle(settings, u"Tab-delimited"_s);
    EXPECT_EQ(preselectedTextReportTypeTitle(settings), u"Tab-delimited"_s);
    EXPECT_EQ(textReportTypeForTitle(u"Regular (one per line)"_s), TextReportType::Regular);
}
