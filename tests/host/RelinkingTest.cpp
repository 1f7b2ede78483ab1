#include "host/AppleScriptHost.h"
#include "host/IdmlRelinking.h"
#include "host/OfflineIdmlHost.h"
#include "support/QtPrinters.h"
#include "support/RecordingScriptRunner.h"
#include "support/TestSupport.h"

#include "idml/IdmlArchive.h"
#include "idml/IdmlDocument.h"
#include "idml/XmlPath.h"
#include "links/LinkPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <csignal>
#include <cstring>

#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace quillon;
using namespace quillon::host;

namespace {

// Self id to LinkResourceURI of every Link, read back with the program's own IDML reader.
QHash<QString, QString> linkUris(const QString& idmlPath)
{
    QHash<QString, QString> uris;
    const auto document = idml::IdmlDocument::open(idmlPath, QDir::tempPath());
    EXPECT_TRUE(document.ok()) << idmlPath.toStdString();
    if (!document)
        return uris;
    for (const QStringList* parts :
         {&(*document)->masterSpreadFiles(), &(*document)->spreadFiles(), &(*document)->storyFiles()})
        for (const QString& name : *parts)
            idml::forEachElement((*(*document)->part(name))->document(), [&](const pugi::xml_node element) {
                if (std::strcmp(element.name(), "Link") == 0)
                    uris.insert(QString::fromUtf8(element.attribute("Self").value()),
                                QString::fromUtf8(element.attribute("LinkResourceURI").value()));
            });
    return uris;
}

QString fileName(const QString& uri)
{
    return QFileInfo(links::pathFromFileUri(uri, QStringLiteral("/"))).fileName();
}

// A copy of a sample to rewrite, in a folder with a "Links" folder beside it.
struct PackagedCopy {
    explicit PackagedCopy(const QString& sample)
    {
        path = folder.filePath(QFileInfo(sample).fileName());
        EXPECT_TRUE(QFile::copy(test::samplePath(sample), path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        QDir().mkpath(links());
    }
    QString links() const { return folder.filePath(QStringLiteral("Links")); }
    QTemporaryDir folder;
    QString path;
};

} // namespace

TEST(Relinking, OfflineRewritesTheUrisOfLinksWithAFileInTheFolderAndNothingElse)
{
    PackagedCopy copy(QStringLiteral("idml/freshers.idml"));
    const QHash<QString, QString> before = linkUris(copy.path);
    ASSERT_EQ(before.size(), 24);
    // Two of the links have their files in the folder (one of them under a name in other case,
    // one with a blank); the rest are missing and keep their URIs.
    test::writeAll(copy.links() + QStringLiteral("/RaW.psd"), "psd");
    test::writeAll(copy.links() + QStringLiteral("/warwick TAP.tif"), "tif");
    test::writeAll(copy.links() + QStringLiteral("/unrelated.jpg"), "jpg");
    const auto archive = idml::IdmlArchive::open(test::samplePath(QStringLiteral("idml/freshers.idml")));
    ASSERT_TRUE(archive.ok());

    OfflineIdmlHost host;
    ASSERT_TRUE(host.relinkLinksInDoc(copy.path, copy.links(), true).ok());

    const QHash<QString, QString> after = linkUris(copy.path);
    ASSERT_EQ(after.keys().size(), before.size());
    int changed = 0;
    for (auto link = before.cbegin(); link != before.cend(); ++link) {
        const QString name = fileName(link.value());
        const QString expected = name == QLatin1String("RaW.psd") ? copy.links() + QStringLiteral("/RaW.psd")
                                 : name == QLatin1String("Warwick Tap.tif")
                                     ? copy.links() + QStringLiteral("/warwick TAP.tif")
                                     : QString();
        if (expected.isEmpty()) {
            EXPECT_EQ(after.value(link.key()), link.value()) << link.key().toStdString();
            continue;
        }
        ++changed;
        EXPECT_EQ(after.value(link.key()), links::fileUriFromPath(expected));
        EXPECT_TRUE(after.value(link.key()).contains(QLatin1String("/warwick%20TAP.tif")) ||
                    after.value(link.key()).endsWith(QLatin1String("/RaW.psd")));
        EXPECT_EQ(links::pathFromFileUri(after.value(link.key()), {}), expected);
    }
    EXPECT_GE(changed, 2);

    // "mimetype" first and stored; the parts without links unchanged to the byte.
    const QByteArray bytes = test::readAll(copy.path);
    EXPECT_TRUE(bytes.startsWith("PK\x03\x04"));
    EXPECT_EQ(bytes[8], 0) << "compression method";
    EXPECT_EQ(bytes.mid(30, 8), QByteArrayLiteral("mimetype"));
    // Rewritten entries keep their times (the local header's DOS time and date), so relinking the
    // same document twice gives the same bytes whenever it runs.
    const QByteArray original = test::readAll(test::samplePath(QStringLiteral("idml/freshers.idml")));
    ASSERT_EQ(original.mid(30, 8), QByteArrayLiteral("mimetype"));
    EXPECT_EQ(bytes.mid(10, 4), original.mid(10, 4));
    const auto rewritten = idml::IdmlArchive::open(copy.path);
    ASSERT_TRUE(rewritten.ok());
    EXPECT_EQ(rewritten->entries().size(), archive->entries().size());
    for (const QString& part : {QStringLiteral("designmap.xml"), QStringLiteral("Resources/Graphic.xml"),
                                QStringLiteral("META-INF/container.xml")})
        EXPECT_EQ(*rewritten->readEntry(part), *archive->readEntry(part)) << part.toStdString();
    EXPECT_TRUE(QDir(copy.folder.path()).entryList(QDir::Hidden | QDir::Files).size() == 1) << "no temporary left";
}

TEST(Relinking, OfflineLeavesTheFileAsItWasWhenNothingChangesOrWritingFails)
{
    // Nothing to relink: not even rewritten.
    PackagedCopy plain(QStringLiteral("idml/interview.idml"));
    const QDateTime modified = QFileInfo(plain.path).lastModified();
    OfflineIdmlHost host;
    EXPECT_TRUE(host.relinkLinksInDoc(plain.path, plain.links(), false).ok());
    EXPECT_EQ(test::readAll(plain.path), test::readAll(test::samplePath(QStringLiteral("idml/interview.idml"))));
    EXPECT_EQ(QFileInfo(plain.path).lastModified(), modified);

    // The disk fills halfway through the new archive: the copy stays whole, no temporary is left.
    PackagedCopy copy(QStringLiteral("idml/freshers.idml"));
    test::writeAll(copy.links() + QStringLiteral("/RaW.psd"), "psd");
    const QByteArray original = test::readAll(copy.path);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit previous{};
    ::getrlimit(RLIMIT_FSIZE, &previous);
    rlimit limited = previous;
    limited.rlim_cur = 64 * 1024;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    const app::Status failed = host.relinkLinksInDoc(copy.path, copy.links(), false);
    ::setrlimit(RLIMIT_FSIZE, &previous);
    std::signal(SIGXFSZ, previousHandler);
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.error().file, copy.path);
    EXPECT_EQ(test::readAll(copy.path), original);
    EXPECT_EQ(QDir(copy.folder.path()).entryList(QDir::Hidden | QDir::Files).size(), 1);

    // A folder that is not there, and a document that is not an archive, are refused by name.
    EXPECT_FALSE(host.relinkLinksInDoc(copy.path, copy.folder.filePath(QStringLiteral("none")), false).ok());
    test::writeAll(copy.folder.filePath(QStringLiteral("bad.idml")), "not a zip");
    EXPECT_FALSE(host.relinkLinksInDoc(copy.folder.filePath(QStringLiteral("bad.idml")), copy.links(), false).ok());
    EXPECT_FALSE(host.showLinkID(QStringLiteral("8511"), QStringLiteral("freshers.idml")).ok());
}

TEST(Relinking, OfflineRelinksOneLinkById)
{
    PackagedCopy copy(QStringLiteral("idml/freshers.idml"));
    const QString target = copy.folder.filePath(QStringLiteral("new \"name\" & more=.tif"));
    test::writeAll(target, "tif");
    OfflineIdmlHost host;
    ASSERT_TRUE(host.openDocument(copy.path, false).ok());
    const QHash<QString, QString> before = linkUris(copy.path);

    // u213f is link 8511.
    ASSERT_TRUE(host.relinkLinkID(QStringLiteral("8511"), target, QStringLiteral("freshers.idml")).ok());
    const QHash<QString, QString> after = linkUris(copy.path);
    EXPECT_EQ(links::pathFromFileUri(after.value(QStringLiteral("u213f")), {}), target);
    EXPECT_TRUE(after.value(QStringLiteral("u213f")).endsWith(QLatin1String("/new%20%22name%22%20%26%20more%3D.tif")));
    int same = 0;
    for (auto link = before.cbegin(); link != before.cend(); ++link)
        same += after.value(link.key()) == link.value();
    EXPECT_EQ(same, before.size() - 1);

    EXPECT_FALSE(host.relinkLinkID(QStringLiteral("1"), target, QStringLiteral("freshers.idml")).ok());
    EXPECT_FALSE(
        host.relinkLinkID(QStringLiteral("8511"), target + QStringLiteral(".gone"), QStringLiteral("freshers.idml"))
            .ok());
}

TEST(Relinking, LinksInCommentsAndQuotedGreaterThanSignsAreReadRight)
{
    const QByteArray part = "<!-- <Link Self=\"c\" LinkResourceURI=\"file:/a/x.tif\"/> -->"
                            "<Link Self=\"u1\" Note='a>b' LinkResourceURI=\"file:/old/x.tif\"/>"
                            "<LinkedStory LinkResourceURI=\"file:/old/x.tif\"/>";
    int changed = 0;
    const QByteArray out = retargetLinksInPart(
        part,
        [](const IdmlLink& link) -> std::optional<QString> {
            EXPECT_EQ(link.self, QStringLiteral("u1"));
            return QStringLiteral("/new/x.tif");
        },
        changed);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(out, QByteArray(part).replace("Note='a>b' LinkResourceURI=\"file:/old/x.tif\"",
                                            "Note='a>b' LinkResourceURI=\"file:/new/x.tif\""));
}

TEST(Relinking, AppleScriptLinkActionsReadTheirAnswersAndEscapeNamesAndPaths)
{
    RecordingScriptRunner scripts;
    AppleScriptHost host(scripts, QStringLiteral("Adobe InDesign 2024"));
    const QString doc = QStringLiteral("Ann \"Q\" \\ Book.indd");
    const QString escapedDoc = QStringLiteral("Ann \\\"Q\\\" \\\\ Book.indd");
    const QString path = QStringLiteral("/Jobs/a \"b\"\\c.tif");
    const QString escapedPath = QStringLiteral("/Jobs/a \\\"b\\\"\\\\c.tif");

    scripts.pushResult(true);
    EXPECT_TRUE(host.relinkLinkID(QStringLiteral("8511"), path, doc).ok());
    EXPECT_TRUE(scripts.lastSource().contains(QStringLiteral("POSIX file \"%1\"").arg(escapedPath)));
    EXPECT_TRUE(scripts.lastSource().contains(QStringLiteral("tell document \"%1\"").arg(escapedDoc)));
    EXPECT_TRUE(scripts.lastSource().contains(QStringLiteral("link id 8511 ")));
    scripts.pushResult(false);
    EXPECT_FALSE(host.relinkLinkID(QStringLiteral("8511"), path, doc).ok());
    scripts.pushError(QStringLiteral("The document is not open."));
    const app::Status failed = host.relinkLinkID(QStringLiteral("8511"), path, doc);
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.error().message, QStringLiteral("The document is not open."));
    // An id that is not a number never reaches a script.
    const size_t sent = scripts.calls().size();
    EXPECT_FALSE(host.relinkLinkID(QStringLiteral("1 \n do shell script \"x\""), path, doc).ok());
    EXPECT_FALSE(host.showLinkID(QStringLiteral("u213f"), doc).ok());
    EXPECT_EQ(scripts.calls().size(), sent);

    EXPECT_TRUE(host.showLinkID(QStringLiteral("8511"), doc).ok());
    EXPECT_TRUE(scripts.lastSource().contains(QStringLiteral("document \"%1\" to show link id 8511").arg(escapedDoc)));

    // The whole document: paths as POSIX text, the folder ending in "/", the IDML beside the
    // document, the flag as "1" or "0"; a false answer fails.
    scripts.pushResult(true);
    EXPECT_TRUE(host.relinkLinksInDoc(QStringLiteral("/Pkg/A \"1\".indd"), QStringLiteral("/Pkg/Li\\nks"), true).ok());
    const QString source = scripts.lastSource();
    EXPECT_TRUE(source.contains(QStringLiteral("set docPath to \"/Pkg/A \\\"1\\\".indd\"")));
    EXPECT_TRUE(source.contains(QStringLiteral("set linksFolder to \"/Pkg/Li\\\\nks/\"")));
    EXPECT_TRUE(source.contains(QStringLiteral("set idmlPath to \"/Pkg/A \\\"1\\\".idml\"")));
    EXPECT_TRUE(source.contains(QStringLiteral("set createIDML to \"1\"")));
    scripts.pushResult(false);
    EXPECT_FALSE(host.relinkLinksInDoc(QStringLiteral("/Pkg/A.indd"), QStringLiteral("/Pkg/Links/"), false).ok());
    EXPECT_TRUE(scripts.lastSource().contains(QStringLiteral("set linksFolder to \"/Pkg/Links/\"")));
    EXPECT_TRUE(scripts.lastSource().contains(QStringLiteral("set createIDML to \"0\"")));
}
