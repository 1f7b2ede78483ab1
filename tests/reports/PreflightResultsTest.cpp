#include "reports/PreflightResults.h"

#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "preflight/PreflightReporting.h"
#include "results/PresetKeys.h"
#include "results/ResultKeys.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::reports;

namespace {

const QString kDocPath = QStringLiteral("/Jobs/Brochure.idml");

QVariantMap dataFile(const QVariantList& records)
{
    return {{kDocPath, QVariantMap{{app::kGroupNameKey, QStringLiteral("Brochure.idml")},
                                   {app::kGroupIsDockKey, true},
                                   {app::kGroupChildrenKey, records}}}};
}

QVariantMap missingRule()
{
    return {{QStringLiteral("attribute"), QStringLiteral("Status")},
            {QStringLiteral("attributeKey"), QStringLiteral("status")},
            {QStringLiteral("condition"), QStringLiteral("is")},
            {QStringLiteral("value"), QStringLiteral("Missing")}};
}

QVariantMap strictPreset()
{
    return {
        {results::kPresetNameKey, QStringLiteral("Strict")},
        {results::kPresetFontsKey, QVariantMap{{results::kConditionsKey, QVariantList{missingRule()}}}},
        {results::kPresetLinksKey, QVariantMap{{results::kConditionsKey, QVariantList{missingRule()}}}},
        {results::kPresetColorsKey, QVariantMap{{QStringLiteral("RGB"), 1}, {QStringLiteral("regAppliedToText"), 1}}}};
}

class PreflightResultsTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    QString settingsFile() const { return m_dir.filePath(QStringLiteral("settings.ini")); }

    static inspection::DocumentRecord record()
    {
        return {QString(),
                kDocPath,
                QStringLiteral("Brochure.idml"),
                QStringLiteral("4"),
                QStringLiteral("0"),
                QStringLiteral("20.0")};
    }

    // A preflight's outcome: a missing link, a missing font and an RGB colour.
    static preflight::PreflightOutcome outcome(const preflight::JudgingInputs& judging)
    {
        preflight::PreflightOutcome outcome;
        outcome.record = record();
        outcome.judging = judging;
        outcome.linkData = dataFile({QVariantMap{{QStringLiteral("name"), QStringLiteral("Lost.tif")},
                                                 {QStringLiteral("path"), QStringLiteral("/Jobs/Links/Lost.tif")},
                                                 {QStringLiteral("status"), QStringLiteral("Missing")},
                                                 {QStringLiteral("sizebytes"), 0}}});
        outcome.fonts = QVariantList{QVariantMap{{QStringLiteral("name"), QStringLiteral("Minion Pro Regular")},
                                                 {QStringLiteral("type"), QStringLiteral("OpenType CFF")},
                                                 {QStringLiteral("status"), QStringLiteral("missing")}}};
        outcome.colors =
            inspection::ColorInspection{{QVariantMap{{QStringLiteral("name"), QStringLiteral("Web Blue")},
                                                     {QStringLiteral("spot"), QStringLiteral("process")},
                                                     {QStringLiteral("space"), QStringLiteral("RGB")},
                                                     {QStringLiteral("colValuesList"), QVariantList{0, 102, 204}},
                                                     {QStringLiteral("used"), QStringLiteral("\u221A")}}},
                                        {},
                                        0};
        return outcome;
    }

    inspection::QNDocInfo docInfo() const { return inspection::QNDocInfo::docInfoWithRecord(record()); }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(PreflightResultsTest, JudgesTheOutcomeByItsPresetAndCountsTheAlerts)
{
    int presetReads = 0;
    PreflightResults results([&presetReads] {
        ++presetReads;
        return std::optional<QVariantMap>(strictPreset());
    });
    const preflight::JudgingInputs judging = results.judgingInputs();
    EXPECT_TRUE(judging.registrationInText);
    preflight::PreflightOutcome found = outcome(judging);
    results.setItems(found);
    EXPECT_TRUE(found.linkData.isEmpty()); // taken over, not held twice
    EXPECT_EQ(presetReads, 1);             // read once, as the preflight started
    ASSERT_EQ(results.linkItems().size(), 1);
    ASSERT_EQ(results.fontItems().size(), 1);
    ASSERT_EQ(results.colorItems().size(), 1);

    inspection::QNDocInfo info = docInfo();
    results.populateSummaryAndDocInfo(info);
    EXPECT_EQ(results.status().text, QStringLiteral("3 errors found: Fonts: 1 \u2022 Colors: 1 \u2022 Links: 1"));
    EXPECT_TRUE(info.hasPreflightErrors());
    const QVariantMap summary = results.summary().toVariantMap();
    EXPECT_EQ(summary.value(QStringLiteral("Links")).toMap().value(QStringLiteral("Missing")).toString(),
              QStringLiteral("1"));

    // Without a preset nothing is judged.
    PreflightResults unjudged([] { return std::optional<QVariantMap>(); });
    EXPECT_FALSE(unjudged.judgingInputs().registrationInText);
    preflight::PreflightOutcome unjudgedOutcome = outcome({});
    unjudged.setItems(unjudgedOutcome);
    unjudged.populateSummaryAndDocInfo(info);
    EXPECT_EQ(unjudged.status().total, 0);
    EXPECT_FALSE(info.hasPreflightErrors());

    // Clearing empties the lists and the summary.
    results.clearAllResults();
    EXPECT_TRUE(results.linkItems().isEmpty() && results.fontItems().isEmpty() && results.colorItems().isEmpty());
}

TEST_F(PreflightResultsTest, ChangingThePresetJudgesWhatIsShownAgain)
{
    QVariantMap current = strictPreset();
    int presetReads = 0;
    PreflightResults results([&] {
        ++presetReads;
        return std::optional<QVariantMap>(current);
    });
    results.setSettingsFile(settingsFile());
    // With nothing shown the choice is only stored.
    results.presetsPopup(QStringLiteral("Print"));
    EXPECT_EQ(app::Settings(settingsFile()).value(QStringLiteral("selectedPreset")).toString(),
              QStringLiteral("Print"));
    EXPECT_EQ(presetReads, 0);
    // A batch document's results come back through the data files the preflight wrote.
    EXPECT_TRUE(preflight::writeDataFiles(m_dir.path(), outcome({})).isEmpty());
    results.setItemsFromDataFiles(m_dir.path());
    EXPECT_TRUE(results::hasAlerts(results.linkItems().front().toMap()));
    EXPECT_TRUE(results::hasAlerts(results.colorItems().front().toMap()));
    ASSERT_TRUE(QDir(m_dir.path()).remove(app::kLinkDataFileName)); // judged again without reading it back

    current = QVariantMap{{results::kPresetNameKey, QStringLiteral("Lenient")}};
    results.presetsPopup(QStringLiteral("Lenient"));
    EXPECT_FALSE(results::hasAlerts(results.linkItems().front().toMap()));
    EXPECT_FALSE(results::hasAlerts(results.colorItems().front().toMap()));
    current = strictPreset(); // and back: the rows judged in place are judged anew
    results.presetsPopup(QStringLiteral("Strict"));
    EXPECT_TRUE(results::hasAlerts(results.linkItems().front().toMap()));
}

TEST_F(PreflightResultsTest, TheReportIsWrittenInTheChosenLayoutAtTheGivenTime)
{
    PreflightResults results(PreflightResults::fixedPreset(strictPreset()));
    const QDateTime when(QDate(2026, 1, 15), QTime(10, 0));
    results.setClock([when] { return when; });
    preflight::PreflightOutcome found = outcome(PreflightResults::judgingInputsFor(strictPreset()));
    results.setItems(found);
    const inspection::QNDocInfo info = docInfo();

    EXPECT_FALSE(results.createTextReport(QString(), QString(), info));
    const QString out = m_dir.filePath(QStringLiteral("out"));
    QDir().mkpath(out);
    app::Result<QString> regular = results.createTextReport(out, QString(), info);
    ASSERT_TRUE(regular) << regular.error().text().toStdString();
    EXPECT_EQ(*regular, out + QStringLiteral("/Brochure.idml_Quillon_Report.txt"));
    EXPECT_EQ(QString::fromUtf8(test::readAll(*regular)), results.textReport(TextReportType::Regular, QString(), info));
    EXPECT_TRUE(QString::fromUtf8(test::readAll(*regular)).contains(QLatin1String("\nStatus: Missing\n")));

    results.setTextReportType(TextReportType::TabDelimited);
    app::Result<QString> tab = results.createTextReport(out, QStringLiteral("Body: 3 paragraphs"), info);
    ASSERT_TRUE(tab);
    const QString text = QString::fromUtf8(test::readAll(*tab));
    EXPECT_EQ(text, results.textReport(TextReportType::TabDelimited, QStringLiteral("Body: 3 paragraphs"), info));
    EXPECT_TRUE(text.contains(QLatin1String("\tPDF Embedding\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("Report date: %1\n").arg(QLocale().toString(when, QLocale::ShortFormat))));
}

TEST(TextReportType, TheSavePanelRemembersTheChosenLayout)
{
    QTemporaryDir dir;
    app::Settings settings(dir.filePath(QStringLiteral("s.ini")));
    EXPECT_EQ(preselectedTextReportTypeTitle(settings), QStringLiteral("Regular"));
    rememberTextReportTypeTitle(settings, QStringLiteral("Tab-delimited"));
    EXPECT_EQ(preselectedTextReportTypeTitle(settings), QStringLiteral("Tab-delimited"));
    EXPECT_EQ(textReportTypeForTitle(QStringLiteral("Regular (one per line)")), TextReportType::Regular);
}
