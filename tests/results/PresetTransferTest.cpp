#include "results/PresetTransfer.h"

#include "app/Alerts.h"
#include "app/PropertyList.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quillon::results {
namespace {

class PresetTransfer : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_presets.isValid() && m_target.isValid());
        writePreset(m_presets.path(), u"[Default]"_s, u"ours"_s);
        writePreset(m_presets.path(), u"Print"_s, u"ours"_s);
    }

    static void writePreset(const QString& folder, const QString& name, const QString& marker)
    {
        ASSERT_TRUE(app::writePropertyListFile(QVariantMap{{u"name"_s, name}, {u"marker"_s, marker}},
                                               folder + u'/' + name + u".qnfp"_s)
                        .ok());
    }

    static QVariantMap read(const QString& path)
    {
        auto dict = app::readPropertyListDictionary(path);
        return dict ? dict.value() : QVariantMap();
    }

    QStringList targetFiles() const { return QDir(m_target.path()).entryList(QDir::Files, QDir::Name); }

    QTemporaryDir m_presets;
    QTemporaryDir m_target;
    app::ScriptedAlertSink m_alerts;
};

TEST_F(PresetTransfer, ExportWritesDefaultAsDefaultQnfp)
{
    EXPECT_EQ(exportAllPresets(m_presets.path(), m_target.path(), m_alerts), TransferOutcome::Done);
    EXPECT_EQ(targetFiles(), (QStringList{u"Default.qnfp"_s, u"Print.qnfp"_s}));
    EXPECT_TRUE(m_alerts.requests().empty());
    // "[Default]" and "Default" stay two files.
    writePreset(m_presets.path(), u"Default"_s, u"second"_s);
    QTemporaryDir fresh;
    EXPECT_EQ(exportAllPresets(m_presets.path(), fresh.path(), m_alerts), TransferOutcome::Done);
    EXPECT_EQ(QDir(fresh.path()).entryList(QDir::Files, QDir::Name),
              (QStringList{u"Default copy 1.qnfp"_s, u"Default.qnfp"_s, u"Print.qnfp"_s}));
}

TEST_F(PresetTransfer, ExportConflictsReplaceCancelOrKeepBoth)
{
    writePreset(m_target.path(), u"Print"_s, u"theirs"_s);

    m_alerts.pushAnswer(app::kAlertSecondButton); // Cancel
    EXPECT_EQ(exportAllPresets(m_presets.path(), m_target.path(), m_alerts), TransferOutcome::Cancelled);
    EXPECT_EQ(targetFiles(), QStringList{u"Print.qnfp"_s});

    m_alerts.pushAnswer(app::kAlertThirdButton); // Keep Both
    EXPECT_EQ(exportAllPresets(m_presets.path(), m_target.path(), m_alerts), TransferOutcome::Done);
    EXPECT_EQ(read(m_target.filePath(u"Print.qnfp"_s)).value(u"marker"_s).toString(), u"theirs"_s);
    EXPECT_EQ(read(m_target.filePath(u"Print copy 1.qnfp"_s)).value(u"name"_s).toString(), u"Print copy 1"_s);

    m_alerts.pushAnswer(app::kAlertFirstButton); // Replace
    EXPECT_EQ(exportAllPresets(m_presets.path(), m_target.path(), m_alerts), TransferOutcome::Done);
    EXPECT_EQ(read(m_target.filePath(u"Print.qnfp"_s)).value(u"marker"_s).toString(), u"ours"_s);
    EXPECT_FALSE(QFileInfo::exists(m_target.filePath(u"Print copy 2.qnfp"_s)));
}

TEST_F(PresetTransfer, AFailedWriteStopsTheExport)
{
    const QString notAFolder = m_target.filePath(u"file"_s);
    test::writeAll(notAFolder, "x");
    EXPECT_EQ(exportAllPresets(m_presets.path(), notAFolder, m_alerts), TransferOutcome::Failed);
    ASSERT_EQ(m_alerts.requests().size(), 1u);
    EXPECT_TRUE(m_alerts.requests()[0].message.contains(u"Print"_s));
}

TEST_F(PresetTransfer, ImportWithTheDesktopAnswerAlwaysKeepsBothAndAsksAgain)
{
    writePreset(m_target.path(), u"Print"_s, u"theirs"_s);
    writePreset(m_target.path(), u"[Default]"_s, u"theirs"_s);
    writePreset(m_target.path(), u"Web"_s, u"theirs"_s);
    const QStringList files{m_target.filePath(u"Print.qnfp"_s), m_target.filePath(u"[Default].qnfp"_s),
                            m_target.filePath(u"Web.qnfp"_s)};
    // The desktop's alerts answer 1000 for "Replace".
    EXPECT_EQ(importPresets(m_presets.path(), files, m_alerts), TransferOutcome::Done);
    EXPECT_EQ(m_alerts.requests().size(), 2u);
    EXPECT_EQ(read(m_presets.filePath(u"Print.qnfp"_s)).value(u"marker"_s).toString(), u"ours"_s);
    EXPECT_EQ(read(m_presets.filePath(u"Print copy 1.qnfp"_s)).value(u"name"_s).toString(), u"Print copy 1"_s);
    EXPECT_TRUE(QFileInfo::exists(m_presets.filePath(u"[Default] copy 1.qnfp"_s)));
    EXPECT_TRUE(QFileInfo::exists(m_presets.filePath(u"Web.qnfp"_s)));
}

TEST_F(PresetTransfer, ImportReadsTheClassicAnswers)
{
    writePreset(m_target.path(), u"Print"_s, u"theirs"_s);
    writePreset(m_target.path(), u"[Default]"_s, u"theirs"_s);
    const QStringList files{m_target.filePath(u"Print.qnfp"_s), m_target.filePath(u"[Default].qnfp"_s)};

    app::ScriptedAlertSink stop({kClassicAlertAlternate});
    EXPECT_EQ(importPresets(m_presets.path(), files, stop), TransferOutcome::Cancelled);
    EXPECT_EQ(read(m_presets.filePath(u"Print.qnfp"_s)).value(u"marker"_s).toString(), u"ours"_s);

    app::ScriptedAlertSink keepBoth({kClassicAlertOther});
    EXPECT_EQ(importPresets(m_presets.path(), files, keepBoth), TransferOutcome::Done);
    EXPECT_EQ(keepBoth.requests().size(), 1u); // the mode holds for the later conflict
    EXPECT_TRUE(QFileInfo::exists(m_presets.filePath(u"[Default] copy 1.qnfp"_s)));

    app::ScriptedAlertSink replace({kClassicAlertDefault});
    EXPECT_EQ(importPresets(m_presets.path(), files, replace), TransferOutcome::Done);
    EXPECT_EQ(replace.requests().size(), 1u);
    EXPECT_EQ(read(m_presets.filePath(u"[Default].qnfp"_s)).value(u"marker"_s).toString(), u"theirs"_s);
}

TEST_F(PresetTransfer, AnUnreadableImportStopsWithItsReason)
{
    const QString broken = m_target.filePath(u"Broken.qnfp"_s);
    test::writeAll(broken, "\xff\xfe garbage");
    EXPECT_EQ(importPresets(m_presets.path(), {broken, m_target.filePath(u"missing.qnfp"_s)}, m_alerts),
              TransferOutcome::Failed);
    ASSERT_EQ(m_alerts.requests().size(), 1u);
    EXPECT_TRUE(m_alerts.requests()[0].message.contains(u"Broken.qnfp"_s));
    EXPECT_FALSE(QFileInfo::exists(m_presets.filePath(u"Broken.qnfp"_s)));
}

TEST_F(PresetTransfer, ReplacementPaths)
{
    const QString path = m_target.filePath(u"Print.qnfp"_s);
    EXPECT_EQ(replacementPathFor(path), m_target.filePath(u"Print copy 1.qnfp"_s));
    test::writeAll(m_target.filePath(u"Print copy 1.qnfp"_s), "x");
    test::writeAll(m_target.filePath(u"Print copy 2.qnfp"_s), "x");
    EXPECT_EQ(replacementPathFor(path), m_target.filePath(u"Print copy 3.qnfp"_s));
}

} // namespace
} // namespace quillon::results
