#include "host/FontColorInspection.h"

#include "app/PropertyList.h"
#include "inspection/ColorRecordKeys.h"
#include "inspection/FontRecordKeys.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::inspection;
using namespace quillon::host;

namespace {

// Records the scripts sent to InDesign and answers them in turn.
struct RecordingRunner {
    QStringList scripts;
    QList<app::Result<QString>> answers;

    ScriptTextRunner runner()
    {
        return [this](const QString& source) -> app::Result<QString> {
            scripts.append(source);
            if (answers.isEmpty())
                return app::makeError(QStringLiteral("no answer"));
            return answers.takeFirst();
        };
    }
};

QString answer(const QList<QStringList>& records)
{
    QStringList joined;
    for (const QStringList& fields : records)
        joined.append(fields.join(QChar(kScriptFieldSeparator)) + QChar(kScriptRecordSeparator));
    return joined.join(QString());
}

QString sections(const QStringList& parts)
{
    return parts.join(QChar(kScriptSectionSeparator));
}

const QString kDocPath = QStringLiteral("/Jobs/Spring \"Issue\".indd");

ScriptedDocument document(RecordingRunner& recorder)
{
    return {recorder.runner(), QStringLiteral("Adobe InDesign 2024"), QStringLiteral("Spring \"Issue\".indd"),
            kDocPath};
}

} // namespace

TEST(FontColorScripts, FontsAreAskedOfInDesignAndWrittenAsRecords)
{
    RecordingRunner recorder;
    recorder.answers.append(answer({
        {"Minion Pro\tRegular", "OpenType CFF", "not available", "MinionPro-Regular", "", ""},
        {"Arial\tBold", "TrueType", "installed", "Arial-BoldMT", "/Library/Fonts/Arial Bold.ttf", "true"},
        {"Kiro\tBold", "OpenType CFF", "installed", "Kiro-Bold",
         "/Users/me/Library/Application Support/Adobe/CoreSync/plugins/livetype/.r/.123.otf", "false"},
        {"Broken"},
    }));
    const auto found = processFontsWithScripts(document(recorder));
    ASSERT_TRUE(found.ok());

    ASSERT_EQ(recorder.scripts.size(), 1);
    const QString& script = recorder.scripts[0];
    EXPECT_TRUE(script.contains(QStringLiteral("tell document \"Spring \\\"Issue\\\".indd\"")));

    const QVariantList& fonts = *found;
    ASSERT_EQ(fonts.size(), 3); // the partial answer is dropped
    const QVariantMap arial = fonts[0].toMap();
    EXPECT_EQ(arial.value(kFontNameKey), QStringLiteral("Arial Bold"));
    EXPECT_EQ(arial.value(kFontPathKey), QStringLiteral("/Library/Fonts/Arial Bold.ttf"));
    EXPECT_EQ(arial.value(kFontEmbedKey), QStringLiteral("Yes"));
    const QVariantMap kiro = fonts[1].toMap();
    EXPECT_EQ(kiro.value(kFontPathKey), QStringLiteral("Activated from Adobe Fonts"));
    EXPECT_EQ(kiro.value(kFontEmbedKey), QStringLiteral("No"));
    const QVariantMap minion = fonts[2].toMap();
    EXPECT_EQ(minion.value(kFontNameKey), QStringLiteral("Minion Pro Regular"));
    EXPECT_EQ(minion.value(kFontStatusKey), QStringLiteral("missing"));
    EXPECT_EQ(minion.value(kFontPathKey), QStringLiteral("?"));
    EXPECT_EQ(minion.value(kFontEmbedKey), QStringLiteral("?"));
}

TEST(FontColorScripts, SwatchesUnusedNamesAndRegistrationInText)
{
    RecordingRunner recorder;
    recorder.answers.append(sections({answer({{"None", "swatch", "", "", ""},
                                              {"Registration", "color", "registration", "CMYK", "100 100 100 100"},
                                              {"PANTONE 130 U", "color", "spot", "LAB", "72,94 32 68"},
                                              {"Sky", "gradient", "", "", ""}}),
                                      answer({{"Sky"}}), QStringLiteral("4")}));
    recorder.answers.append(sections({answer({{"Paper", "color", "process", "CMYK", "0 0 0 0"}}), {}, "0"}));
    const auto found = processColorsWithScripts(document(recorder), QStringLiteral("1"));
    ASSERT_TRUE(found.ok());
    EXPECT_TRUE(recorder.scripts[0].contains(QStringLiteral("find text")));

    EXPECT_EQ(found->registrationInTextCount, 4);
    EXPECT_EQ(found->namesOfUnusedColors, QStringList{QStringLiteral("Sky")});
    const QVariantList& colors = found->records;
    ASSERT_EQ(colors.size(), 4);
    const QVariantMap spot = colors[2].toMap();
    EXPECT_EQ(spot.value(kColorModelKey), QStringLiteral("spot"));
    EXPECT_EQ(spot.value(kColorValuesListKey).toList(), (QVariantList{72.94, 32.0, 68.0}));
    EXPECT_EQ(spot.value(kColorUsedKey), QStringLiteral("\u221A"));
    EXPECT_EQ(colors[3].toMap().value(kColorUsedKey), QStringLiteral("-"));

    // Without the rule the script does not search the text, and the count is 0.
    const auto without = processColorsWithScripts(document(recorder), QStringLiteral("0"));
    ASSERT_TRUE(without.ok());
    EXPECT_FALSE(recorder.scripts[1].contains(QStringLiteral("find text")));
    EXPECT_EQ(without->registrationInTextCount, 0);
    EXPECT_EQ(without->records.size(), 1);
}

TEST(FontColorScripts, ParagraphStylesReport)
{
    RecordingRunner recorder;
    recorder.answers.append(sections(
        {answer({{"11", "[No Paragraph Style]", "", "Minion Pro", "Regular", "12", "auto", "120"},
                 {"12", "[Basic Paragraph]", "[No Paragraph Style]", "Minion Pro", "Regular", "12", "auto", "120"},
                 {"13", "Head", "[Basic Paragraph]", "Myriad Pro", "Bold", "24,5", "28", "120"}}),
         answer({{"13"}, {"13"}, {"12"}})}));
    const auto report = paraReportWithScripts(document(recorder));
    ASSERT_TRUE(report.ok());
    // Counts from the second section, the comma decimal and auto leading read as InDesign gives them.
    EXPECT_TRUE(report->startsWith(QStringLiteral("Paragraph styles in use (2)\n\n[Basic Paragraph]: 1 paragraph\n")));
    EXPECT_TRUE(report->contains(QStringLiteral("Leading: Auto (14.4 pt)")));
    EXPECT_TRUE(report->contains(QStringLiteral("Head: 2 paragraphs\n")));
    EXPECT_TRUE(report->contains(QStringLiteral("Size: 24.5 pt")));
}

TEST(FontColorScripts, InDesignErrorsAreReported)
{
    RecordingRunner recorder;
    recorder.answers.append(app::makeError(QStringLiteral("Can't get document \"Spring.indd\".")));
    const auto fonts = processFontsWithScripts(document(recorder));
    ASSERT_FALSE(fonts.ok());
    EXPECT_TRUE(fonts.error().text().contains(QStringLiteral("Can't get document")));
    EXPECT_FALSE(paraReportWithScripts(document(recorder)).ok());

    ScriptedDocument noRunner = document(recorder);
    noRunner.run = nullptr;
    EXPECT_FALSE(processColorsWithScripts(noRunner, QStringLiteral("1")).ok());
}
