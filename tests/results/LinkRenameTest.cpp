#include "results/LinkRename.h"

#include "app/Alerts.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

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
        m_oldPath = m_dir.filePath(u"photo.tif"_s);
        test::writeAll(m_oldPath, "pixels");
        m_items = {
            row(u"1"_s), row(u"2"_s),
            QVariantMap{{u"name"_s, u"other.tif"_s}, {u"path"_s, m_dir.filePath(u"other.tif"_s)}, {u"id"_s, u"3"_s}}};
    }

    QVariantMap row(const QString& id) const
    {
        return {{u"name"_s, u"photo.tif"_s},
                {u"path"_s, m_oldPath},
                {u"id"_s, id},
                {u"status"_s, u"OK"_s},
                {u"docPath"_s, u"/jobs/brochure.indd"_s}};
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
    test::writeAll(m_dir.filePath(u"taken.tif"_s), "other");
    const struct {
        QString name;
        QString title;
        bool critical;
    } cases[] = {
        {QString(), u"Please specify a new file name"_s, false},
        {u"a:b.psd"_s, u"Error"_s, false}, // the characters come before the extension
        {u"photo"_s, u"File extensions don't match"_s, true},
        {u".photo.tif"_s, u"Error"_s, false},
        {u"taken.tif"_s, u"File already exists"_s, true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(rename(c.name).outcome, LinkRenameOutcome::Refused) << c.name.toStdString();
        EXPECT_EQ(lastTitle(), c.title) << c.name.toStdString();
        EXPECT_EQ(m_alerts.requests().back().critical, c.critical) << c.name.toStdString();
    }
    EXPECT_TRUE(QFileInfo::exists(m_oldPath));
    EXPECT_EQ(test::readAll(m_dir.filePath(u"taken.tif"_s)), QByteArray("other"));
    EXPECT_TRUE(m_relinker.calls.isEmpty());
    EXPECT_EQ(rename(u"photo.tif"_s).outcome, LinkRenameOutcome::Unchanged);
}

TEST_F(LinkRename, RelinksEveryRowOfThePath)
{
    const LinkRenameResult result = rename(u"cover.tif"_s);
    EXPECT_EQ(result.outcome, LinkRenameOutcome::Relinked);
    const QString newPath = m_dir.filePath(u"cover.tif"_s);
    EXPECT_EQ(result.newPath, newPath);
    EXPECT_FALSE(QFileInfo::exists(m_oldPath));
    EXPECT_EQ(m_relinker.calls,
              (QStringList{u"1|"_s + newPath + u"|brochure.indd"_s, u"2|"_s + newPath + u"|brochure.indd"_s}));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(m_items[i].toMap().value(u"path"_s).toString(), newPath);
    EXPECT_EQ(m_items[2].toMap().value(u"name"_s).toString(), u"other.tif"_s);
    EXPECT_TRUE(m_alerts.requests().empty());
}

TEST_F(LinkRename, AFailedRelinkMovesTheFileBack)
{
    m_relinker.answer = false;
    EXPECT_EQ(rename(u"cover.tif"_s).outcome, LinkRenameOutcome::MovedBack);
    EXPECT_TRUE(QFileInfo::exists(m_oldPath));
    EXPECT_FALSE(QFileInfo::exists(m_dir.filePath(u"cover.tif"_s)));
    EXPECT_TRUE(m_alerts.requests().empty()); // silently
    EXPECT_EQ(m_items[0].toMap().value(u"name"_s).toString(), u"photo.tif"_s);
}

TEST_F(LinkRename, ABatchMovesTheFileAndThenSaysItIsNotSupported)
{
    const QVariantList rows = m_items;
    m_items = {QVariantMap{
        {u"docPath"_s, u"/jobs/a.indd"_s}, {u"name"_s, u"a.indd"_s}, {u"isDock"_s, 1}, {u"children"_s, rows}}};
    const LinkRenameResult result = renameLinkedFile(m_items, rows[0].toMap(), u"cover.tif"_s, m_alerts, m_relinker);
    EXPECT_EQ(result.outcome, LinkRenameOutcome::NotRelinked);
    EXPECT_TRUE(QFileInfo::exists(m_dir.filePath(u"cover.tif"_s)));
    EXPECT_EQ(lastTitle(), u"Link renaming for multiple InDesign documents is not supported yet"_s);
    EXPECT_TRUE(m_relinker.calls.isEmpty());
}

TEST_F(LinkRename, RowsWithoutTheirIdAreNotFound)
{
    QVariantMap edited = m_items[0].toMap();
    m_items = {QVariantMap{{u"name"_s, u"photo.tif"_s}, {u"path"_s, m_oldPath}}};
    EXPECT_EQ(renameLinkedFile(m_items, edited, u"cover.tif"_s, m_alerts, m_relinker).outcome,
              LinkRenameOutcome::NotRelinked);
    EXPECT_EQ(lastTitle(), u"Could not find requested links"_s);
}

TEST_F(LinkRename, AFileThatIsGoneCannotBeRenamed)
{
    QFile::remove(m_oldPath);
    EXPECT_EQ(rename(u"cover.tif"_s).outcome, LinkRenameOutcome::NotMoved);
    EXPECT_EQ(lastTitle(), u"File could not be renamed"_s);
}

} // namespace
} // namespace quillon::results
