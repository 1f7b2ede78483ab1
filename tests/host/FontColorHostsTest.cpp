#include "host/AppleScriptHost.h"
#include "host/OfflineIdmlHost.h"
#include "inspection/FontFiles.h"
#include "inspection/FontRecordKeys.h"
#include "support/IdmlFixtures.h"
#include "support/RecordingScriptRunner.h"

#include "app/AppPaths.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::inspection;
using namespace quillon::host;

namespace {

QVariantMap fontNamed(const QVariantList& fonts, const QString& name)
{
    for (const QVariant& font : fonts)
        if (font.toMap().value(kFontNameKey).toString() == name)
            return font.toMap();
    return {};
}

class OfflineHostInspections : public testing::Test {
protected:
    void SetUp() override
    {
        app::setTemporaryFolderOverride(m_temp.path());
        m_document = m_docs.filePath(QStringLiteral("Brochure.idml"));
        ASSERT_TRUE(QFile::copy(test::repoPath(QStringLiteral("resources/sample/sample-brochure.idml")), m_document));
        ASSERT_TRUE(m_host.openDocument(m_document, false).ok());
        auto record = m_host.pathsAndNameOfDocument(DocumentReference::active());
        ASSERT_TRUE(record.ok());
        m_record = *record;
    }
    void TearDown() override { app::setTemporaryFolderOverride(QString()); }

    // What the inspections leave in the work folder: nothing once they are done.
    QStringList scratchLeft() const
    {
        return QDir(app::workFolder()).entryList({QStringLiteral("inspect-*")}, QDir::Dirs | QDir::NoDotAndDotDot);
    }

    QTemporaryDir m_temp;
    QTemporaryDir m_docs;
    QString m_document;
    inspection::DocumentRecord m_record;
    OfflineIdmlHost m_host;
};

} // namespace

TEST_F(OfflineHostInspections, UnpackTheDocumentWhenNoExportIsGiven)
{
    // A font in the Document fonts folder beside the document wins over the installed one.
    FontFileFinder finder({});
    const auto installed = finder.find(QStringLiteral("DejaVuSans"), {}, {});
    ASSERT_TRUE(installed.has_value());
    QDir(m_docs.path()).mkpath(QStringLiteral("Document fonts"));
    const QString local = m_docs.filePath(QStringLiteral("Document fonts/DejaVuSans.ttf"));
    ASSERT_TRUE(QFile::copy(installed->path, local));

    const auto inspected = m_host.processFonts(m_record, nullptr, nullptr);
    ASSERT_TRUE(inspected.ok());
    const QVariantList& fonts = inspected->found;
    const QVariantMap sans = fontNamed(fonts, QStringLiteral("DejaVu Sans Book"));
    EXPECT_EQ(sans.value(kFontPathKey), local);
    EXPECT_EQ(sans.value(kFontStatusKey), QStringLiteral("installed"));
    EXPECT_FALSE(fontNamed(fonts, QStringLiteral("Garamond Premier Pro Italic")).isEmpty());

    const auto colors = m_host.processColors(m_record, nullptr, QStringLiteral("1"), nullptr);
    ASSERT_TRUE(colors.ok());
    EXPECT_FALSE(colors->found.records.isEmpty());

    // Asked for by name after the preflight.
    const auto report = m_host.paraReport(QStringLiteral("Brochure.idml"), nullptr);
    ASSERT_TRUE(report.ok()) << report.error().text().toStdString();
    EXPECT_TRUE(report->found.startsWith(QStringLiteral("Paragraph styles in use"))) << report->found.toStdString();
    EXPECT_FALSE(m_host.paraReport(QStringLiteral("Other.idml"), nullptr).ok());
    EXPECT_TRUE(scratchLeft().isEmpty());
}

TEST_F(OfflineHostInspections, ReadThePreflightsExportWhenGiven)
{
    // The export stands for the document: here another document's, to show which one is read.
    const auto other = test::readPackage(test::samplePath(QStringLiteral("idml/helloworld-1.idml")));
    const auto fonts = m_host.processFonts(m_record, other.get(), nullptr);
    ASSERT_TRUE(fonts.ok());
    ASSERT_EQ(fonts->found.size(), 1);
    EXPECT_FALSE(fontNamed(fonts->found, QStringLiteral("Times New Roman Regular")).isEmpty());

    EXPECT_FALSE(m_host.processFonts({}, nullptr, nullptr).ok());
    test::writeAll(m_document, "not a zip");
    const auto damaged = m_host.processColors(m_record, nullptr, QStringLiteral("0"), nullptr);
    EXPECT_FALSE(damaged.ok());
    EXPECT_TRUE(scratchLeft().isEmpty());
}

TEST(AppleScriptHostInspections, RefusalsAreErrorsAndAnIncompleteRecordSendsNothing)
{
    RecordingScriptRunner scripts;
    AppleScriptHost host(scripts, QStringLiteral("Adobe InDesign 2024"));
    const inspection::DocumentRecord record{QStringLiteral("Mac HD:Jobs:Ann \"Q\".indd"),
                                            QStringLiteral("/Jobs/Ann \"Q\".indd"),
                                            QStringLiteral("Ann \"Q\".indd"),
                                            QStringLiteral("4"),
                                            QStringLiteral("2"),
                                            QStringLiteral("19.0")};
    // InDesign's refusal is the error; an incomplete record sends no script.
    scripts.pushError(QStringLiteral("Can't get document \"Ann \\\"Q\\\".indd\"."), -1728);
    const auto refused = host.processFonts(record, nullptr, nullptr);
    ASSERT_FALSE(refused.ok());
    EXPECT_TRUE(refused.error().message.startsWith(QStringLiteral("Can't get document")));
    const std::size_t sent = scripts.calls().size();
    inspection::DocumentRecord incomplete = record;
    incomplete.posixPath.clear();
    EXPECT_FALSE(host.processColors(incomplete, nullptr, QStringLiteral("0"), nullptr).ok());
    EXPECT_EQ(scripts.calls().size(), sent);
}
