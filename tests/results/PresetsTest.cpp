#include "results/Presets.h"

#include "app/Alerts.h"
#include "app/PropertyList.h"
#include "app/Settings.h"
#include "results/PresetKeys.h"
#include "results/PresetSettings.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quillon::results {
namespace {

// What a preset file holds, as any reader of the format sees it.
QVariantMap readBack(const QString& path)
{
    const app::Result<QVariantMap> dict = app::readPropertyListDictionary(path);
    EXPECT_TRUE(dict.ok()) << path.toStdString();
    return dict.ok() ? *dict : QVariantMap();
}

const QVariantMap kMissingRule{{u"attribute"_s, u"Status"_s},
                               {u"attributeKey"_s, u"status"_s},
                               {u"condition"_s, u"is"_s},
                               {u"value"_s, u"Missing"_s}};

class Presets : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    QString folder() const { return m_dir.path(); }
    QString file(const QString& name) const { return m_dir.filePath(name + u".qnfp"_s); }

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
    EXPECT_EQ(table.presetNames(), QStringList{u"[Default]"_s});
    const QVariantMap written = readBack(file(u"[Default]"_s));
    EXPECT_EQ(written.value(u"name"_s).toString(), u"[Default]"_s);
    EXPECT_EQ(written.value(u"Fonts"_s).toMap().value(u"conditions"_s).toList(), QVariantList{kMissingRule});
    for (const char* empty : {"Colors", "Document", "Options"})
        EXPECT_TRUE(written.contains(QLatin1String(empty)) && written.value(QLatin1String(empty)).toMap().isEmpty())
            << empty;
}

TEST_F(Presets, DefaultComesFirstAndIsOnlyInMemoryWhenOthersExist)
{
    writePreset(u"Print.qnfp"_s, {{u"name"_s, u"Print"_s}, {u"Fonts"_s, QVariantMap()}});
    writePreset(u"Web.qnfp"_s, {{u"name"_s, u"Web"_s}});
    writePreset(u".Hidden.qnfp"_s, {{u"name"_s, u"Hidden"_s}});
    writePreset(u"Empty.qnfp"_s, {});
    writePreset(u"Other.plist"_s, {{u"name"_s, u"Other"_s}});
    test::writeAll(file(u"Broken"_s), "<plist><dict><key>name</key>");
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    EXPECT_EQ(table.presetNames(), (QStringList{u"[Default]"_s, u"Print"_s, u"Web"_s}));
    EXPECT_FALSE(QFileInfo::exists(file(u"[Default]"_s)));

    // Selected and left, the default is written.
    table.selectRow(0);
    ASSERT_TRUE(table.selectionShouldChange(table.loadSelectedPreset()).ok());
    EXPECT_TRUE(QFileInfo::exists(file(u"[Default]"_s)));

    // Now on disk, it is moved to the front wherever it sorts.
    writePreset(u"0 First.qnfp"_s, {{u"name"_s, u"0 First"_s}});
    ASSERT_TRUE(table.loadPresets().ok());
    EXPECT_EQ(table.presetNames().first(), u"[Default]"_s);
}

TEST_F(Presets, AnUnreadableDefaultIsNeverOverwritten)
{
    test::writeAll(file(u"[Default]"_s), "garbage");
    QNPresetsTable table(folder());
    EXPECT_FALSE(table.loadPresets().ok());
    EXPECT_EQ(table.presetNames(), QStringList{u"[Default]"_s});
    EXPECT_EQ(test::readAll(file(u"[Default]"_s)), QByteArray("garbage"));
}

TEST_F(Presets, AddingNamesNewPresetsFromOne)
{
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    table.selectRow(0);
    EXPECT_EQ(table.addRow().value(), u"New Preset 1"_s);
    table.selectRow(1);
    EXPECT_EQ(table.addRow().value(), u"New Preset 2"_s);
    EXPECT_EQ(table.presetNames(), (QStringList{u"[Default]"_s, u"New Preset 1"_s, u"New Preset 2"_s}));
    EXPECT_EQ(readBack(file(u"New Preset 2"_s)).value(u"name"_s).toString(), u"New Preset 2"_s);
    // A file that could not be read keeps its name from being reused.
    test::writeAll(file(u"New Preset 3"_s), "not a plist");
    EXPECT_EQ(table.addRow().value(), u"New Preset 4"_s);
    EXPECT_EQ(test::readAll(file(u"New Preset 3"_s)), QByteArray("not a plist"));
}

TEST_F(Presets, RemovingRefusesTheDefault)
{
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    table.selectRow(0);
    ASSERT_TRUE(table.addRow().ok());
    PresetsPopup popup{table.presetNames(), u"New Preset 1"_s};

    EXPECT_FALSE(table.removeRow(m_alerts, &popup));
    ASSERT_EQ(m_alerts.requests().size(), 1u);
    EXPECT_TRUE(m_alerts.requests()[0].critical);

    table.selectRow(1);
    EXPECT_TRUE(table.minusButtonEnabled());
    EXPECT_TRUE(table.removeRow(m_alerts, &popup));
    EXPECT_FALSE(QFileInfo::exists(file(u"New Preset 1"_s)));
    EXPECT_EQ(table.presetNames(), QStringList{u"[Default]"_s});
    EXPECT_EQ(popup.title, u"[Default]"_s);
    EXPECT_EQ(table.selectedRow(), 0);
}

TEST_F(Presets, RenamingRefusesInItsOrder)
{
    writePreset(u"Print.qnfp"_s, {{u"name"_s, u"Print"_s}});
    writePreset(u"Web.qnfp"_s, {{u"name"_s, u"Web"_s}});
    test::writeAll(file(u"Unreadable"_s), "x");
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    const qsizetype print = table.rowOfPreset(u"Print"_s);
    const struct {
        QString name;
        QString title;
        bool critical;
    } refusals[] = {
        {u"Web"_s, u"Preset with this name already exists"_s, true},
        {QString(), u"Please assign a name to the preflight preset"_s, true},
        {u"Print [final]"_s, u"Error"_s, false},
        {u"Café"_s, u"Error"_s, false},
        {u".hidden"_s, u"Error"_s, false},
        {u"Unreadable"_s, u"File with this name already exists"_s, true},
    };
    for (const auto& r : refusals) {
        EXPECT_FALSE(table.renamePreset(print, r.name, m_alerts)) << r.name.toStdString();
        EXPECT_EQ(m_alerts.requests().back().title, r.title) << r.name.toStdString();
        EXPECT_EQ(m_alerts.requests().back().critical, r.critical) << r.name.toStdString();
    }
    EXPECT_TRUE(QFileInfo::exists(file(u"Print"_s)));

    PresetsPopup popup{table.presetNames(), u"Print"_s};
    EXPECT_TRUE(table.renamePreset(print, u"Print final"_s, m_alerts, &popup));
    EXPECT_FALSE(QFileInfo::exists(file(u"Print"_s)));
    EXPECT_EQ(readBack(file(u"Print final"_s)).value(u"name"_s).toString(), u"Print final"_s);
    EXPECT_TRUE(popup.allPresets.contains(u"Print final"_s));
}

TEST(PresetSizes, SinglePrecisionByUnit)
{
    EXPECT_EQ(sizeLimitBytes(u"1.5"_s, u"MB"_s), 1572864u);
    EXPECT_EQ(sizeLimitBytes(u"2"_s, u"TB"_s), 2147483648u); // any other unit is GB
    // Single precision: 0.3 GB is not 322122547.2 but what a float makes of it.
    EXPECT_EQ(sizeLimitBytes(u"0.3"_s, u"GB"_s), static_cast<std::uint64_t>(0.3f * 1073741824.0f));
    EXPECT_EQ(sizeLimitBytes(u"-3"_s, u"MB"_s), 0u);
    EXPECT_EQ(sizeLimitBytes(u"lots"_s, u"MB"_s), 0u);
    EXPECT_EQ(sizeLimitBytes(u"1e30"_s, u"GB"_s), UINT64_MAX);
    EXPECT_EQ(sizeLimitBytes(u"12 MB"_s, u"KB"_s), 12288u);
}

TEST_F(Presets, EditorStateIsWrittenInTheFileShape)
{
    QVariantMap preset = defaultPreset();
    preset.insert(u"name"_s, u"Print"_s);
    QVariantMap fonts = preset.value(u"Fonts"_s).toMap();
    fonts.insert(u"embed"_s, true); // made elsewhere: kept, never written by the editors
    preset.insert(u"Fonts"_s, fonts);
    writePreset(u"Print.qnfp"_s, preset);

    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    PresetEditorState shown = table.selectRow(table.rowOfPreset(u"Print"_s));
    EXPECT_EQ(shown.sizeBelowUnits, u"MB"_s);
    EXPECT_EQ(shown.fontRules, QVariantList{kMissingRule});
    shown.sizeBelowField = u"1.5"_s;
    shown.sizeAboveField = u"3"_s;
    shown.sizeAboveUnits = u"GB"_s;
    shown.resBelowField = u"250"_s;
    shown.fontsEpsBtn = 1;
    shown.fontsEpsMtrx = 1;
    shown.embedBtn = 1;
    shown.colorRules = {{u"spot"_s, 1}, {u"LAB"_s, 0}};
    ASSERT_TRUE(table.writeCurrPreset(shown).ok());

    const QVariantMap written = readBack(file(u"Print"_s));
    const QVariantMap links = written.value(u"Links"_s).toMap();
    EXPECT_EQ(links.value(u"sizeBelowBytes"_s).toLongLong(), 1572864);
    EXPECT_EQ(links.value(u"sizeAboveBytes"_s).toLongLong(), 3221225472LL);
    EXPECT_EQ(links.value(u"resBelowField"_s).toString(), u"250"_s);
    EXPECT_EQ(links.value(u"fontsEpsMtrx"_s).toInt(), 1);
    EXPECT_EQ(links.value(u"conditions"_s).toList(), QVariantList{kMissingRule});
    const QVariantMap writtenFonts = written.value(u"Fonts"_s).toMap();
    EXPECT_EQ(writtenFonts.value(u"embedBtn"_s).toInt(), 1);
    EXPECT_TRUE(writtenFonts.value(u"embed"_s).toBool());
    EXPECT_EQ(written.value(u"Colors"_s).toMap().value(u"spot"_s).toInt(), 1);

    // What was written is what the editors show again.
    QNPresetsTable reloaded(folder());
    ASSERT_TRUE(reloaded.loadPresets().ok());
    const PresetEditorState again = reloaded.selectRow(reloaded.rowOfPreset(u"Print"_s));
    EXPECT_EQ(again.sizeAboveUnits, u"GB"_s);
    EXPECT_EQ(again.colorRules, shown.colorRules);
}

TEST_F(Presets, StartupSelectsTheRowOfLastTimeAndWritesNothingOnTheFirstChange)
{
    writePreset(u"Print.qnfp"_s, {{u"name"_s, u"Print"_s}});
    app::Settings settings(m_dir.filePath(u"settings.ini"_s));
    settings.setValue(u"presetIndexSelectedOnQuit"_s, 1);
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadStartupSettings(settings).ok());
    EXPECT_EQ(table.selectedRow(), 1);
    PresetEditorState shown = table.loadSelectedPreset();
    shown.nonPrintBtn = 1;
    ASSERT_TRUE(table.selectionShouldChange(shown).ok());
    EXPECT_FALSE(app::readPropertyListDictionary(file(u"Print"_s))->contains(u"Links"_s));
    ASSERT_TRUE(table.selectionShouldChange(shown).ok());
    EXPECT_TRUE(app::readPropertyListDictionary(file(u"Print"_s))->contains(u"Links"_s));

    settings.setValue(u"presetIndexSelectedOnQuit"_s, 9);
    ASSERT_TRUE(table.loadStartupSettings(settings).ok());
    EXPECT_EQ(table.selectedRow(), -1);
    EXPECT_FALSE(table.curPreset());
}

TEST_F(Presets, ANameFromAFileNeverLeadsOutOfTheFolder)
{
    writePreset(u"Evil.qnfp"_s, {{u"name"_s, u"../../escaped"_s}});
    QNPresetsTable table(folder());
    ASSERT_TRUE(table.loadPresets().ok());
    table.selectRow(table.rowOfPreset(u"../../escaped"_s));
    ASSERT_TRUE(table.writeCurrPreset(table.loadSelectedPreset()).ok());
    EXPECT_FALSE(QFileInfo::exists(QDir(folder()).absoluteFilePath(u"../../escaped.qnfp"_s)));
    EXPECT_TRUE(table.presetFilePath(u"../../escaped"_s).startsWith(folder() + u'/'));
}

TEST_F(Presets, TheCurrentPresetIsReadFromDisk)
{
    app::Settings settings(m_dir.filePath(u"settings.ini"_s));
    EXPECT_EQ(selectPresetOnLaunch(settings), u"[Default]"_s);
    EXPECT_FALSE(currPreset(settings, m_alerts, folder()));
    ASSERT_EQ(m_alerts.requests().size(), 1u);
    EXPECT_EQ(m_alerts.requests()[0].title, u"The selected checkup preset could not be found"_s);

    writePreset(u"Print.qnfp"_s, {{u"name"_s, u"Print"_s}});
    presetsPopup(settings, u"Print"_s);
    EXPECT_EQ(selectPresetOnLaunch(settings), u"Print"_s);
    const auto preset = currPreset(settings, m_alerts, folder());
    ASSERT_TRUE(preset);
    EXPECT_EQ(preset->value(u"name"_s).toString(), u"Print"_s);

    test::writeAll(file(u"Print"_s), "<plist>");
    EXPECT_FALSE(currPreset(settings, m_alerts, folder()));
    EXPECT_EQ(m_alerts.requests().back().title, u"The selected checkup preset could not be read"_s);
    EXPECT_TRUE(m_alerts.requests().back().message.contains(u"Print.qnfp"_s));
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
