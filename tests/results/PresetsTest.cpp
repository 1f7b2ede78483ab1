#include "results/Presets.h"

#include "app/Alerts.h"
#include "app/PropertyList.h"
#include "app/Settings.h"
#include "results/PresetKeys.h"
#include "results/PresetSettings.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quillon::results {
namespace {

// What Python's plistlib makes of a file, through JSON.
QVariantMap readWithPython(const QString& path)
{
    QProcess python;
    python.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"),
                  QStringLiteral("import plistlib, json, sys\n"
                                 "print(json.dumps(plistlib.load(open(sys.argv[1], 'rb'))))"),
                  path});
    if (!python.waitForFinished(20000) || python.exitCode() != 0) {
        ADD_FAILURE() << "plistlib could not read " << path.toStdString() << ": "
                      << python.readAllStandardError().toStdString();
        return {};
    }
    return QJsonDocument::fromJson(python.readAllStandardOutput()).object().toVariantMap();
}

const QVariantMap kMissingRule{{QStringLiteral("attribute"), QStringLiteral("Status")},
                               {QStringLiteral("attributeKey"), QStringLiteral("status")},
                               {QStringLiteral("condition"), QStringLiteral("is")},
                               {QStringLiteral("value"), QStringLiteral("Missing")}};

class Presets : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    QString folder() const { return m_dir.path(); }
    QString file(const QString& name) const { return m_dir.filePath(name + QStringLiteral(".qnfp")); }

    void writePreset(const QString& fileName, const QVariantMap& preset) const
    {
        ASSERT_TRUE(app::writePropertyListFile(preset, m_dir.filePath(fileName)).ok());
    }

    QTemporaryDir m_dir;
    app::ScriptedAlertSink m_alerts;
};

TEST_F(Presets, AnEmptyFolderGetsTheDefaultPresetFile)
{
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    EXPECT_EQ(table.presetNames(), QStringList{QStringLiteral("[Default]")});
    const QVariantMap python = readWithPython(file(QStringLiteral("[Default]")));
    EXPECT_EQ(python.value(QStringLiteral("name")).toString(), QStringLiteral("[Default]"));
    EXPECT_EQ(python.value(QStringLiteral("Fonts")).toMap().value(QStringLiteral("conditions")).toList(),
              QVariantList{kMissingRule});
    for (const char* empty : {"Colors", "Document", "Options"})
        EXPECT_TRUE(python.contains(QLatin1String(empty)) && python.value(QLatin1String(empty)).toMap().isEmpty())
            << empty;
}

TEST_F(Presets, DefaultComesFirstAndIsOnlyInMemoryWhenOthersExist)
{
    writePreset(QStringLiteral("Print.qnfp"),
                {{QStringLiteral("name"), QStringLiteral("Print")}, {QStringLiteral("Fonts"), QVariantMap()}});
    writePreset(QStringLiteral("Web.qnfp"), {{QStringLiteral("name"), QStringLiteral("Web")}});
    writePreset(QStringLiteral(".Hidden.qnfp"), {{QStringLiteral("name"), QStringLiteral("Hidden")}});
    writePreset(QStringLiteral("Empty.qnfp"), {});
    writePreset(QStringLiteral("Other.plist"), {{QStringLiteral("name"), QStringLiteral("Other")}});
    test::writeAll(file(QStringLiteral("Broken")), "<plist><dict><key>name</key>");
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    EXPECT_EQ(table.presetNames(),
              (QStringList{QStringLiteral("[Default]"), QStringLiteral("Print"), QStringLiteral("Web")}));
    EXPECT_FALSE(QFileInfo::exists(file(QStringLiteral("[Default]"))));

    // Selected and left, the default is written.
    table.selectRow(0);
    ASSERT_TRUE(table.selectionShouldChange(table.loadSelectedPreset()).ok());
    EXPECT_TRUE(QFileInfo::exists(file(QStringLiteral("[Default]"))));

    // Now on disk, it is moved to the front wherever it sorts.
    writePreset(QStringLiteral("0 First.qnfp"), {{QStringLiteral("name"), QStringLiteral("0 First")}});
    ASSERT_TRUE(table.loadPresets().ok());
    EXPECT_EQ(table.presetNames().first(), QStringLiteral("[Default]"));
}

TEST_F(Presets, AnUnreadableDefaultIsNeverOverwritten)
{
    test::writeAll(file(QStringLiteral("[Default]")), "garbage");
    QNPresetsTable table(folder());
    EXPECT_FALSE(table.loadPresets().ok());
    EXPECT_EQ(table.presetNames(), QStringList{QStringLiteral("[Default]")});
    EXPECT_EQ(test::readAll(file(QStringLiteral("[Default]"))), QByteArray("garbage"));
}

TEST_F(Presets, AddingNamesNewPresetsFromOne)
{
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    table.selectRow(0);
    EXPECT_EQ(table.addRow().value(), QStringLiteral("New Preset 1"));
    table.selectRow(1);
    EXPECT_EQ(table.addRow().value(), QStringLiteral("New Preset 2"));
    EXPECT_EQ(table.presetNames(), (QStringList{QStringLiteral("[Default]"), QStringLiteral("New Preset 1"),
                                                QStringLiteral("New Preset 2")}));
    EXPECT_EQ(readWithPython(file(QStringLiteral("New Preset 2"))).value(QStringLiteral("name")).toString(),
              QStringLiteral("New Preset 2"));
    // A file that could not be read keeps its name from being reused.
    test::writeAll(file(QStringLiteral("New Preset 3")), "not a plist");
    EXPECT_EQ(table.addRow().value(), QStringLiteral("New Preset 4"));
    EXPECT_EQ(test::readAll(file(QStringLiteral("New Preset 3"))), QByteArray("not a plist"));
}

TEST_F(Presets, RemovingRefusesTheDefault)
{
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    table.selectRow(0);
    ASSERT_TRUE(table.addRow().ok());
    PresetsPopup popup{table.presetNames(), QStringLiteral("New Preset 1")};

    EXPECT_FALSE(table.removeRow(m_alerts, &popup));
    ASSERT_EQ(m_alerts.requests().size(), 1u);
    EXPECT_TRUE(m_alerts.requests()[0].critical);

    table.selectRow(1);
    EXPECT_TRUE(table.minusButtonEnabled());
    EXPECT_TRUE(table.removeRow(m_alerts, &popup));
    EXPECT_FALSE(QFileInfo::exists(file(QStringLiteral("New Preset 1"))));
    EXPECT_EQ(table.presetNames(), QStringList{QStringLiteral("[Default]")});
    EXPECT_EQ(popup.title, QStringLiteral("[Default]"));
    EXPECT_EQ(table.selectedRow(), 0);
}

TEST_F(Presets, RenamingRefusesInItsOrder)
{
    writePreset(QStringLiteral("Print.qnfp"), {{QStringLiteral("name"), QStringLiteral("Print")}});
    writePreset(QStringLiteral("Web.qnfp"), {{QStringLiteral("name"), QStringLiteral("Web")}});
    test::writeAll(file(QStringLiteral("Unreadable")), "x");
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    const qsizetype print = table.rowOfPreset(QStringLiteral("Print"));
    const struct {
        QString name;
        QString title;
        bool critical;
    } refusals[] = {
        {QStringLiteral("Web"), QStringLiteral("Preset with this name already exists"), true},
        {QString(), QStringLiteral("Please assign a name to the preflight preset"), true},
        {QStringLiteral("Print [final]"), QStringLiteral("Error"), false},
        {QStringLiteral("Café"), QStringLiteral("Error"), false},
        {QStringLiteral(".hidden"), QStringLiteral("Error"), false},
        {QStringLiteral("Unreadable"), QStringLiteral("File with this name already exists"), true},
    };
    for (const auto& r : refusals) {
        EXPECT_FALSE(table.renamePreset(print, r.name, m_alerts)) << r.name.toStdString();
        EXPECT_EQ(m_alerts.requests().back().title, r.title) << r.name.toStdString();
        EXPECT_EQ(m_alerts.requests().back().critical, r.critical) << r.name.toStdString();
    }
    EXPECT_TRUE(QFileInfo::exists(file(QStringLiteral("Print"))));

    PresetsPopup popup{table.presetNames(), QStringLiteral("Print")};
    EXPECT_TRUE(table.renamePreset(print, QStringLiteral("Print final"), m_alerts, &popup));
    EXPECT_FALSE(QFileInfo::exists(file(QStringLiteral("Print"))));
    EXPECT_EQ(readWithPython(file(QStringLiteral("Print final"))).value(QStringLiteral("name")).toString(),
              QStringLiteral("Print final"));
    EXPECT_TRUE(popup.allPresets.contains(QStringLiteral("Print final")));
}

TEST(PresetSizes, SinglePrecisionByUnit)
{
    EXPECT_EQ(sizeLimitBytes(QStringLiteral("1.5"), QStringLiteral("MB")), 1572864u);
    EXPECT_EQ(sizeLimitBytes(QStringLiteral("2"), QStringLiteral("TB")), 2147483648u); // any other unit is GB
    // Single precision: 0.3 GB is not 322122547.2 but what a float makes of it.
    EXPECT_EQ(sizeLimitBytes(QStringLiteral("0.3"), QStringLiteral("GB")),
              static_cast<std::uint64_t>(0.3f * 1073741824.0f));
    EXPECT_EQ(sizeLimitBytes(QStringLiteral("-3"), QStringLiteral("MB")), 0u);
    EXPECT_EQ(sizeLimitBytes(QStringLiteral("lots"), QStringLiteral("MB")), 0u);
    EXPECT_EQ(sizeLimitBytes(QStringLiteral("1e30"), QStringLiteral("GB")), UINT64_MAX);
    EXPECT_EQ(sizeLimitBytes(QStringLiteral("12 MB"), QStringLiteral("KB")), 12288u);
}

TEST_F(Presets, EditorStateIsWrittenInTheFileShape)
{
    QVariantMap preset = defaultPreset();
    preset.insert(QStringLiteral("name"), QStringLiteral("Print"));
    QVariantMap fonts = preset.value(QStringLiteral("Fonts")).toMap();
    fonts.insert(QStringLiteral("embed"), true); // made elsewhere: kept, never written by the editors
    preset.insert(QStringLiteral("Fonts"), fonts);
    writePreset(QStringLiteral("Print.qnfp"), preset);

    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    PresetEditorState shown = table.selectRow(table.rowOfPreset(QStringLiteral("Print")));
    EXPECT_EQ(shown.sizeBelowUnits, QStringLiteral("MB"));
    EXPECT_EQ(shown.fontRules, QVariantList{kMissingRule});
    shown.sizeBelowField = QStringLiteral("1.5");
    shown.sizeAboveField = QStringLiteral("3");
    shown.sizeAboveUnits = QStringLiteral("GB");
    shown.resBelowField = QStringLiteral("250");
    shown.fontsEpsBtn = 1;
    shown.fontsEpsMtrx = 1;
    shown.embedBtn = 1;
    shown.colorRules = {{QStringLiteral("spot"), 1}, {QStringLiteral("LAB"), 0}};
    ASSERT_TRUE(table.writeCurrPreset(shown).ok());

    const QVariantMap python = readWithPython(file(QStringLiteral("Print")));
    const QVariantMap links = python.value(QStringLiteral("Links")).toMap();
    EXPECT_EQ(links.value(QStringLiteral("sizeBelowBytes")).toLongLong(), 1572864);
    EXPECT_EQ(links.value(QStringLiteral("sizeAboveBytes")).toLongLong(), 3221225472LL);
    EXPECT_EQ(links.value(QStringLiteral("resBelowField")).toString(), QStringLiteral("250"));
    EXPECT_EQ(links.value(QStringLiteral("fontsEpsMtrx")).toInt(), 1);
    EXPECT_EQ(links.value(QStringLiteral("conditions")).toList(), QVariantList{kMissingRule});
    const QVariantMap writtenFonts = python.value(QStringLiteral("Fonts")).toMap();
    EXPECT_EQ(writtenFonts.value(QStringLiteral("embedBtn")).toInt(), 1);
    EXPECT_TRUE(writtenFonts.value(QStringLiteral("embed")).toBool());
    EXPECT_EQ(python.value(QStringLiteral("Colors")).toMap().value(QStringLiteral("spot")).toInt(), 1);

    // What was written is what the editors show again.
    QNPresetsTable reloaded(folder());
    ASSERT_TRUE(reloaded.loadPresets().ok());
    const PresetEditorState again = reloaded.selectRow(reloaded.rowOfPreset(QStringLiteral("Print")));
    EXPECT_EQ(again.sizeAboveUnits, QStringLiteral("GB"));
    EXPECT_EQ(again.colorRules, shown.colorRules);
}

TEST_F(Presets, StartupSelectsTheRowOfLastTimeAndWritesNothingOnTheFirstChange)
{
    writePreset(QStringLiteral("Print.qnfp"), {{QStringLiteral("name"), QStringLiteral("Print")}});
    app::Settings settings(m_dir.filePath(QStringLiteral("settings.ini")));
    settings.setValue(QStringLiteral("presetIndexSelectedOnQuit"), 1);
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadStartupSettings(settings).ok());
    EXPECT_EQ(table.selectedRow(), 1);
    PresetEditorState shown = table.loadSelectedPreset();
    shown.nonPrintBtn = 1;
    ASSERT_TRUE(table.selectionShouldChange(shown).ok());
    EXPECT_FALSE(app::readPropertyListDictionary(file(QStringLiteral("Print")))->contains(QStringLiteral("Links")));
    ASSERT_TRUE(table.selectionShouldChange(shown).ok());
    EXPECT_TRUE(app::readPropertyListDictionary(file(QStringLiteral("Print")))->contains(QStringLiteral("Links")));

    settings.setValue(QStringLiteral("presetIndexSelectedOnQuit"), 9);
    ASSERT_TRUE(table.loadStartupSettings(settings).ok());
    EXPECT_EQ(table.selectedRow(), -1);
    EXPECT_FALSE(table.curPreset());
}

TEST_F(Presets, ANameFromAFileNeverLeadsOutOfTheFolder)
{
    writePreset(QStringLiteral("Evil.qnfp"), {{QStringLiteral("name"), QStringLiteral("../../escaped")}});
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    table.selectRow(table.rowOfPreset(QStringLiteral("../../escaped")));
    ASSERT_TRUE(table.writeCurrPreset(table.loadSelectedPreset()).ok());
    EXPECT_FALSE(QFileInfo::exists(QDir(folder()).absoluteFilePath(QStringLiteral("../../escaped.qnfp"))));
    EXPECT_TRUE(table.presetFilePath(QStringLiteral("../../escaped")).startsWith(folder() + u'/'));
}

TEST_F(Presets, TheCurrentPresetIsReadFromDisk)
{
    app::Settings settings(m_dir.filePath(QStringLiteral("settings.ini")));
    EXPECT_EQ(selectPresetOnLaunch(settings), QStringLiteral("[Default]"));
    EXPECT_FALSE(currPreset(settings, m_alerts, folder()));
    ASSERT_EQ(m_alerts.requests().size(), 1u);
    EXPECT_EQ(m_alerts.requests()[0].title, QStringLiteral("The selected checkup preset could not be found"));

    writePreset(QStringLiteral("Print.qnfp"), {{QStringLiteral("name"), QStringLiteral("Print")}});
    presetsPopup(settings, QStringLiteral("Print"));
    EXPECT_EQ(selectPresetOnLaunch(settings), QStringLiteral("Print"));
    const auto preset = currPreset(settings, m_alerts, folder());
    ASSERT_TRUE(preset);
    EXPECT_EQ(preset->value(QStringLiteral("name")).toString(), QStringLiteral("Print"));

    test::writeAll(file(QStringLiteral("Print")), "<plist>");
    EXPECT_FALSE(currPreset(settings, m_alerts, folder()));
    EXPECT_EQ(m_alerts.requests().back().title, QStringLiteral("The selected checkup preset could not be read"));
    EXPECT_TRUE(m_alerts.requests().back().message.contains(QStringLiteral("Print.qnfp")));
}

TEST(PresetHelpers, NumericFieldsTakeNumbersOnly)
{
    app::ScriptedAlertSink alerts;
    for (const char* good : {"", "300", "1.5", ".5", " 12 "})
        EXPECT_TRUE(acceptNumericField(alerts, QLatin1String(good))) << good;
    EXPECT_TRUE(alerts.requests().empty());
    for (const char* bad : {"abc", "-3", "1.2.3", "12 MB"})
        EXPECT_FALSE(acceptNumericField(alerts, QLatin1String(bad))) << bad;
    EXPECT_EQ(alerts.requests().size(), 4u);
}

} // namespace
} // namespace quillon::results
