#include "results/LinkRename.h"

#include "app/Alerts.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quillon::results {
namespace {

class RecordingRelinker : public LinkRelinker {
public:
    bool answer = true;
    QStringList calls;
    bool relinkLink(const QString& linkID, const QString& newPath, const QString& docName) override
    {
        calls.append(linkID + u'|' + newPath + u'|' + docName);
        return answer;
    }
};

class LinkRename : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_oldPath = m_dir.filePath(QStringLiteral("photo.tif"));
        test::writeAll(m_oldPath, "pixels");
        m_items = {row(QStringLiteral("1")), row(QStringLiteral("2")),
                   QVariantMap{{QStringLiteral("name"), QStringLiteral("other.tif")},
                               {QStringLiteral("path"), m_dir.filePath(QStringLiteral("other.tif"))},
                               {QStringLiteral("id"), QStringLiteral("3")}}};
    }

    QVariantMap row(const QString& id) const
    {
        return {{QStringLiteral("name"), QStringLiteral("photo.tif")},
                {QStringLiteral("path"), m_oldPath},
                {QStringLiteral("id"), id},
                {QStringLiteral("status"), QStringLiteral("OK")},
                {QStringLiteral("docPath"), QStringLiteral("/jobs/brochure.indd")}};
    }

    LinkRenameResult rename(const QString& newName)
    {
        return renameLinkedFile(m_items, m_items[0].toMap(), newName, m_alerts, m_relinker);
    }

    QString lastTitle() const
    {
        const auto requests = m_alerts.requests();
        return requests.empty() ? QString() : requests.back().title;
    }

    QTemporaryDir m_dir;
    QString m_oldPath;
    QVariantList m_items;
    app::ScriptedAlertSink m_alerts;
    RecordingRelinker m_relinker;
};

TEST_F(LinkRename, RefusalsInTheirOrderLeaveTheFileAlone)
{
    test::writeAll(m_dir.filePath(QStringLiteral("taken.tif")), "other");
    const struct {
        QString name;
        QString title;
        bool critical;
    } cases[] = {
        {QString(), QStringLiteral("Please specify a new file name"), false},
        {QStringLiteral("a:b.psd"), QStringLiteral("Error"), false}, // the characters come before the extension
        {QStringLiteral("photo"), QStringLiteral("File extensions don't match"), true},
        {QStringLiteral(".photo.tif"), QStringLiteral("Error"), false},
        {QStringLiteral("taken.tif"), QStringLiteral("File already exists"), true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(rename(c.name).outcome, LinkRenameOutcome::Refused) << c.name.toStdString();
        EXPECT_EQ(lastTitle(), c.title) << c.name.toStdString();
        EXPECT_EQ(m_alerts.requests().back().critical, c.critical) << c.name.toStdString();
    }
    EXPECT_TRUE(QFileInfo::exists(m_oldPath));
    EXPECT_EQ(test::readAll(m_dir.filePath(QStringLiteral("taken.tif"))), QByteArray("other"));
    EXPECT_TRUE(m_relinker.calls.isEmpty());
    EXPECT_EQ(rename(QStringLiteral("photo.tif")).outcome, LinkRenameOutcome::Unchanged);
}

TEST_F(LinkRename, RelinksEveryRowOfThePath)
{
    const LinkRenameResult result = rename(QStringLiteral("cover.tif"));
    EXPECT_EQ(result.outcome, LinkRenameOutcome::Relinked);
    const QString newPath = m_dir.filePath(QStringLiteral("cover.tif"));
    EXPECT_EQ(result.newPath, newPath);
    EXPECT_FALSE(QFileInfo::exists(m_oldPath));
    EXPECT_EQ(m_relinker.calls, (QStringList{QStringLiteral("1|") + newPath + QStringLiteral("|brochure.indd"),
                                             QStringLiteral("2|") + newPath + QStringLiteral("|brochure.indd")}));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(m_items[i].toMap().value(QStringLiteral("path")).toString(), newPath);
    EXPECT_EQ(m_items[2].toMap().value(QStringLiteral("name")).toString(), QStringLiteral("other.tif"));
    EXPECT_TRUE(m_alerts.requests().empty());
}

TEST_F(LinkRename, AFailedRelinkMovesTheFileBack)
{
    m_relinker.answer = false;
    EXPECT_EQ(rename(QStringLiteral("cover.tif")).outcome, LinkRenameOutcome::MovedBack);
    EXPECT_TRUE(QFileInfo::exists(m_oldPath));
    EXPECT_FALSE(QFileInfo::exists(m_dir.filePath(QStringLiteral("cover.tif"))));
    EXPECT_TRUE(m_alerts.requests().empty()); // silently
    EXPECT_EQ(m_items[0].toMap().value(QStringLiteral("name")).toString(), QStringLiteral("photo.tif"));
}

TEST_F(LinkRename, ABatchMovesTheFileAndThenSaysItIsNotSupported)
{
    const QVariantList rows = m_items;
    m_items = {QVariantMap{{QStringLiteral("docPath"), QStringLiteral("/jobs/a.indd")},
                           {QStringLiteral("name"), QStringLiteral("a.indd")},
                           {QStringLiteral("isDock"), 1},
                           {QStringLiteral("children"), rows}}};
    const LinkRenameResult result =
        renameLinkedFile(m_items, rows[0].toMap(), QStringLiteral("cover.tif"), m_alerts, m_relinker);
    EXPECT_EQ(result.outcome, LinkRenameOutcome::NotRelinked);
    EXPECT_TRUE(QFileInfo::exists(m_dir.filePath(QStringLiteral("cover.tif"))));
    EXPECT_EQ(lastTitle(), QStringLiteral("Link renaming for multiple InDesign documents is not supported yet"));
    EXPECT_TRUE(m_relinker.calls.isEmpty());
}

TEST_F(LinkRename, RowsWithoutTheirIdAreNotFound)
{
    QVariantMap edited = m_items[0].toMap();
    m_items = {QVariantMap{{QStringLiteral("name"), QStringLiteral("photo.tif")}, {QStringLiteral("path"), m_oldPath}}};
    EXPECT_EQ(renameLinkedFile(m_items, edited, QStringLiteral("cover.tif"), m_alerts, m_relinker).outcome,
              LinkRenameOutcome::NotRelinked);
    EXPECT_EQ(lastTitle(), QStringLiteral("Could not find requested links"));
}

TEST_F(LinkRename, AFileThatIsGoneCannotBeRenamed)
{
    QFile::remove(m_oldPath);
    EXPECT_EQ(rename(QStringLiteral("cover.tif")).outcome, LinkRenameOutcome::NotMoved);
    EXPECT_EQ(lastTitle(), QStringLiteral("File could not be renamed"));
}

} // namespace
} // namespace quillon::results
