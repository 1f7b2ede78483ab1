#include "results/PresetTransfer.h"

#include "app/Alerts.h"
#include "app/PropertyList.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quillon::results {
namespace {

class PresetTransfer : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_presets.isValid() && m_target.isValid());
        writePreset(m_presets.path(), QStringLiteral("[Default]"), QStringLiteral("ours"));
        writePreset(m_presets.path(), QStringLiteral("Print"), QStringLiteral("ours"));
    }

    static void writePreset(const QString& folder, const QString& name, const QString& marker)
    {
        ASSERT_TRUE(
            app::writePropertyListFile(QVariantMap{{QStringLiteral("name"), name}, {QStringLiteral("marker"), marker}},
                                       folder + u'/' + name + QStringLiteral(".qnfp"))
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
    EXPECT_EQ(targetFiles(), (QStringList{QStringLiteral("Default.qnfp"), QStringLiteral("Print.qnfp")}));
    EXPECT_TRUE(m_alerts.requests().empty());
    // "[Default]" and "Default" stay two files.
    writePreset(m_presets.path(), QStringLiteral("Default"), QStringLiteral("second"));
    QTemporaryDir fresh;
    EXPECT_EQ(exportAllPresets(m_presets.path(), fresh.path(), m_alerts), TransferOutcome::Done);
    EXPECT_EQ(QDir(fresh.path()).entryList(QDir::Files, QDir::Name),
              (QStringList{QStringLiteral("Default copy 1.qnfp"), QStringLiteral("Default.qnfp"),
                           QStringLiteral("Print.qnfp")}));
}

TEST_F(PresetTransfer, ExportConflictsReplaceCancelOrKeepBoth)
{
    writePreset(m_target.path(), QStringLiteral("Print"), QStringLiteral("theirs"));

    m_alerts.pushAnswer(app::kAlertSecondButton); // Cancel
    EXPECT_EQ(exportAllPresets(m_presets.path(), m_target.path(), m_alerts), TransferOutcome::Cancelled);
    EXPECT_EQ(targetFiles(), QStringList{QStringLiteral("Print.qnfp")});

    m_alerts.pushAnswer(app::kAlertThirdButton); // Keep Both
    EXPECT_EQ(exportAllPresets(m_presets.path(), m_target.path(), m_alerts), TransferOutcome::Done);
    EXPECT_EQ(read(m_target.filePath(QStringLiteral("Print.qnfp"))).value(QStringLiteral("marker")).toString(),
              QStringLiteral("theirs"));
    EXPECT_EQ(read(m_target.filePath(QStringLiteral("Print copy 1.qnfp"))).value(QStringLiteral("name")).toString(),
              QStringLiteral("Print copy 1"));

    m_alerts.pushAnswer(app::kAlertFirstButton); // Replace
    EXPECT_EQ(exportAllPresets(m_presets.path(), m_target.path(), m_alerts), TransferOutcome::Done);
    EXPECT_EQ(read(m_target.filePath(QStringLiteral("Print.qnfp"))).value(QStringLiteral("marker")).toString(),
              QStringLiteral("ours"));
    EXPECT_FALSE(QFileInfo::exists(m_target.filePath(QStringLiteral("Print copy 2.qnfp"))));
}

TEST_F(PresetTransfer, AFailedWriteStopsTheExport)
{
    const QString notAFolder = m_target.filePath(QStringLiteral("file"));
    test::writeAll(notAFolder, "x");
    EXPECT_EQ(exportAllPresets(m_presets.path(), notAFolder, m_alerts), TransferOutcome::Failed);
    ASSERT_EQ(m_alerts.requests().size(), 1u);
    EXPECT_TRUE(m_alerts.requests()[0].message.contains(QStringLiteral("Print")));
}

TEST_F(PresetTransfer, ImportWithTheDesktopAnswerAlwaysKeepsBothAndAsksAgain)
{
    writePreset(m_target.path(), QStringLiteral("Print"), QStringLiteral("theirs"));
    writePreset(m_target.path(), QStringLiteral("[Default]"), QStringLiteral("theirs"));
    writePreset(m_target.path(), QStringLiteral("Web"), QStringLiteral("theirs"));
    const QStringList files{m_target.filePath(QStringLiteral("Print.qnfp")),
                            m_target.filePath(QStringLiteral("[Default].qnfp")),
                            m_target.filePath(QStringLiteral("Web.qnfp"))};
    // The desktop's alerts answer 1000 for "Replace".
    EXPECT_EQ(importPresets(m_presets.path(), files, m_alerts), TransferOutcome::Done);
    EXPECT_EQ(m_alerts.requests().size(), 2u);
    EXPECT_EQ(read(m_presets.filePath(QStringLiteral("Print.qnfp"))).value(QStringLiteral("marker")).toString(),
              QStringLiteral("ours"));
    EXPECT_EQ(read(m_presets.filePath(QStringLiteral("Print copy 1.qnfp"))).value(QStringLiteral("name")).toString(),
              QStringLiteral("Print copy 1"));
    EXPECT_TRUE(QFileInfo::exists(m_presets.filePath(QStringLiteral("[Default] copy 1.qnfp"))));
    EXPECT_TRUE(QFileInfo::exists(m_presets.filePath(QStringLiteral("Web.qnfp"))));
}

TEST_F(PresetTransfer, ImportReadsTheClassicAnswers)
{
    writePreset(m_target.path(), QStringLiteral("Print"), QStringLiteral("theirs"));
    writePreset(m_target.path(), QStringLiteral("[Default]"), QStringLiteral("theirs"));
    const QStringList files{m_target.filePath(QStringLiteral("Print.qnfp")),
                            m_target.filePath(QStringLiteral("[Default].qnfp"))};

    app::ScriptedAlertSink stop({kClassicAlertAlternate});
    EXPECT_EQ(importPresets(m_presets.path(), files, stop), TransferOutcome::Cancelled);
    EXPECT_EQ(read(m_presets.filePath(QStringLiteral("Print.qnfp"))).value(QStringLiteral("marker")).toString(),
              QStringLiteral("ours"));

    app::ScriptedAlertSink keepBoth({kClassicAlertOther});
    EXPECT_EQ(importPresets(m_presets.path(), files, keepBoth), TransferOutcome::Done);
    EXPECT_EQ(keepBoth.requests().size(), 1u); // the mode holds for the later conflict
    EXPECT_TRUE(QFileInfo::exists(m_presets.filePath(QStringLiteral("[Default] copy 1.qnfp"))));

    app::ScriptedAlertSink replace({kClassicAlertDefault});
    EXPECT_EQ(importPresets(m_presets.path(), files, replace), TransferOutcome::Done);
    EXPECT_EQ(replace.requests().size(), 1u);
    EXPECT_EQ(read(m_presets.filePath(QStringLiteral("[Default].qnfp"))).value(QStringLiteral("marker")).toString(),
              QStringLiteral("theirs"));
}

TEST_F(PresetTransfer, AnUnreadableImportStopsWithItsReason)
{
    const QString broken = m_target.filePath(QStringLiteral("Broken.qnfp"));
    test::writeAll(broken, "\xff\xfe garbage");
    EXPECT_EQ(importPresets(m_presets.path(), {broken, m_target.filePath(QStringLiteral("missing.qnfp"))}, m_alerts),
              TransferOutcome::Failed);
    ASSERT_EQ(m_alerts.requests().size(), 1u);
    EXPECT_TRUE(m_alerts.requests()[0].message.contains(QStringLiteral("Broken.qnfp")));
    EXPECT_FALSE(QFileInfo::exists(m_presets.filePath(QStringLiteral("Broken.qnfp"))));
}

TEST_F(PresetTransfer, ReplacementPaths)
{
    const QString path = m_target.filePath(QStringLiteral("Print.qnfp"));
    EXPECT_EQ(replacementPathFor(path), m_target.filePath(QStringLiteral("Print copy 1.qnfp")));
    test::writeAll(m_target.filePath(QStringLiteral("Print copy 1.qnfp")), "x");
    test::writeAll(m_target.filePath(QStringLiteral("Print copy 2.qnfp")), "x");
    EXPECT_EQ(replacementPathFor(path), m_target.filePath(QStringLiteral("Print copy 3.qnfp")));
}

} // namespace
} // namespace quillon::results
