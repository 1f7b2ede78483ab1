#include "links/LinkPaths.h"
#include "links/LinkRecordKeys.h"
#include "links/LinkVolume.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include "support/QtPrinters.h"

#include <gtest/gtest.h>

using namespace quillon::links;

TEST(LinkPaths, FileUrisGiveDecodedPaths)
{
    const QString doc = QStringLiteral("/jobs/brochure");
    EXPECT_EQ(pathFromFileUri(QStringLiteral("file:/Users/ben/Volume%2033/a.tif"), doc),
              QStringLiteral("/Users/ben/Volume 33/a.tif"));
    EXPECT_EQ(pathFromFileUri(QStringLiteral("file:///C:/x.jpg"), doc), QStringLiteral("C:/x.jpg"));
    EXPECT_EQ(pathFromFileUri(QStringLiteral("file://localhost/Users/a.jpg"), doc), QStringLiteral("/Users/a.jpg"));
    EXPECT_EQ(pathFromFileUri(QStringLiteral("file://server/share/a.jpg"), doc),
              QStringLiteral("//server/share/a.jpg"));
    EXPECT_EQ(pathFromFileUri(QStringLiteral("file:../../IDML/media/b.jpg"), QStringLiteral("/r/IDML/expected")),
              QStringLiteral("/r/IDML/media/b.jpg"));
    EXPECT_EQ(pathFromFileUri(QStringLiteral("file:/a/b%23c.jpg?x#y"), doc), QStringLiteral("/a/b#c.jpg"));
    EXPECT_EQ(pathFromFileUri(QStringLiteral("file:/caf%C3%A9.psd"), doc), QString::fromUtf8("/café.psd"));
    EXPECT_TRUE(pathFromFileUri(QStringLiteral("file:"), doc).isEmpty());
    EXPECT_TRUE(pathFromFileUri(QStringLiteral("file://server"), doc).isEmpty());
    EXPECT_TRUE(pathFromFileUri(QStringLiteral("http://example.com/a.jpg"), doc).isEmpty());
    EXPECT_FALSE(isFileUri(QStringLiteral("FILE:/a")));

    // Written back as InDesign writes them.
    for (const char* uri : {"file:/Users/ben/Documents/Boar/Volume%2033/Issue%200/Ads/RaW.psd",
                            "file:C:/Users/Emy/Documents/%3D%3D%3DClients%3D%3D%3D/tab_gradient_v2.00.ai",
                            "file:/caf%C3%A9%20%22x%22%26%23~_.psd"})
        EXPECT_EQ(fileUriFromPath(pathFromFileUri(QString::fromUtf8(uri), doc)), QString::fromUtf8(uri));
}

TEST(LinkPaths, RelocationSearchesTheDocumentFolderThenLinksThenExtraFoldersInOrder)
{
    QTemporaryDir root;
    const QString docFolder = root.filePath(QStringLiteral("job"));
    QDir().mkpath(docFolder + QStringLiteral("/Links"));
    QDir().mkpath(root.filePath(QStringLiteral("extra1")));
    QDir().mkpath(root.filePath(QStringLiteral("extra2")));
    quillon::test::writeAll(docFolder + QStringLiteral("/Links/a.jpg"), "a");
    quillon::test::writeAll(root.filePath(QStringLiteral("extra1/a.jpg")), "a");
    quillon::test::writeAll(root.filePath(QStringLiteral("extra2/b.jpg")), "b");
    quillon::test::writeAll(root.filePath(QStringLiteral("extra1/b.jpg")), "b");
    QDir().mkpath(docFolder + QStringLiteral("/c.jpg")); // a folder is not a link

    const QStringList folders =
        linkSearchFolders(docFolder + QStringLiteral("/job.idml"),
                          {root.filePath(QStringLiteral("extra2")), root.filePath(QStringLiteral("extra1"))});
    ASSERT_EQ(folders.size(), 4);
    EXPECT_EQ(relocatedLinkPath(QStringLiteral("a.jpg"), folders), docFolder + QStringLiteral("/Links/a.jpg"));
    EXPECT_EQ(relocatedLinkPath(QStringLiteral("b.jpg"), folders), root.filePath(QStringLiteral("extra2/b.jpg")));
    EXPECT_TRUE(relocatedLinkPath(QStringLiteral("c.jpg"), folders).isEmpty());
    EXPECT_TRUE(relocatedLinkPath(QStringLiteral(".."), folders).isEmpty());
    EXPECT_TRUE(relocatedLinkPath(QString(), folders).isEmpty());
}

TEST(LinkVolume, PresentFilesNameTheirVolumeAndMissingOnesFollowTheRule)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("x.jpg"));
    quillon::test::writeAll(file, "x");
    EXPECT_FALSE(volumeForLink(file, kLinkStatusOK).isEmpty());
    // An absolute path's first component is the root, so a missing file's volume is "?".
    EXPECT_EQ(volumeForLink(QStringLiteral("/Volumes/Work/x.jpg"), kLinkStatusMissing), QStringLiteral("?"));
    EXPECT_EQ(volumeForLink(QStringLiteral("Volumes/Work/x.jpg"), kLinkStatusMissing), QStringLiteral("Work"));
    EXPECT_EQ(volumeForLink(QStringLiteral("C:/x.jpg"), kLinkStatusMissing), QStringLiteral("?"));
    EXPECT_EQ(volumeForLink(file, kLinkStatusEmbedded), QString());
}
