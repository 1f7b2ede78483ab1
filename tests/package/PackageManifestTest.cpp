#include "package/PackageManifest.h"

#include "app/RegularFile.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace quillon::package;
using quillon::test::readAll;
using quillon::test::writeAll;

// Names JSON must escape, names it need not, a subfolder and a symbolic link: the manifest lists
// each under its own name, is valid JSON, and the check finds a changed byte, a missing file and
// an extra one.
TEST(PackageManifest, ListsEveryFileUnderItsNameAndTheCheckFindsWhatChanged)
{
    QTemporaryDir dir(QCoreApplication::applicationDirPath() + u"/manifest-XXXXXX"_s);
    const QString folder = dir.filePath(u"Job"_s);
    QDir().mkpath(folder + u"/Links/deep"_s);
    const QStringList names{u"Links/say \"hi\".tif"_s, u"Links/back\\slash.eps"_s, u"Links/tab\there.psd"_s,
                            u"Links/deep/Ünïcode ✓.ai"_s, u"Brochure.idml"_s};
    for (const QString& name : names)
        writeAll(folder + u'/' + name, name.toUtf8());
    ASSERT_EQ(::symlink("deep", quillon::app::localBytesOfPath(folder + u"/Links/alias"_s).constData()), 0);
    // A copy's hash is taken from its record while the file is as it was placed.
    CopiedFileRecords copies;
    const QString copiedPath = folder + u'/' + names[0];
    struct stat info {};
    ASSERT_EQ(::lstat(quillon::app::localBytesOfPath(copiedPath).constData(), &info), 0);
    copies.insert(copiedPath, {u"/src/say \"hi\".tif"_s, QByteArray(64, 'a'), fileStamp(info)});

    ASSERT_TRUE(writePackageManifest(folder, {u"Print"_s, {}}, copies).ok());
    QJsonParseError error;
    const QJsonObject manifest =
        QJsonDocument::fromJson(readAll(folder + u"/package-manifest.json"_s), &error).object();
    ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    EXPECT_EQ(manifest[u"preset"_s].toString(), u"Print"_s);
    QStringList listed;
    for (const QJsonValue& entry : manifest[u"files"_s].toArray()) {
        const QJsonObject file = entry.toObject();
        listed << file[u"path"_s].toString();
        if (file[u"path"_s] == names[0]) {
            EXPECT_EQ(file[u"sha256"_s].toString(), QString(64, u'a'));
            EXPECT_EQ(file[u"source"_s].toString(), u"/src/say \"hi\".tif"_s);
        } else if (file[u"path"_s] == names[4]) {
            EXPECT_EQ(file[u"sha256"_s].toString().toLatin1(),
                      QCryptographicHash::hash(names[4].toUtf8(), QCryptographicHash::Sha256).toHex());
            EXPECT_EQ(file[u"size"_s].toInteger(), names[4].toUtf8().size());
            EXPECT_TRUE(file[u"modified"_s].toString().endsWith(u'Z'));
        }
    }
    QStringList expected = names;
    expected << u"Links/alias"_s;
    expected.sort();
    EXPECT_EQ(listed, expected);

    // The recorded hash was not the data's: the check says so, and finds what else changed.
    writeAll(folder + u'/' + names[1], "other");
    QFile::remove(folder + u'/' + names[2]);
    writeAll(folder + u"/Links/new.tif"_s, "new");
    const auto check = verifyPackage(folder);
    ASSERT_TRUE(check.ok());
    EXPECT_EQ(check->filesListed, 6);
    EXPECT_EQ(check->missing, QStringList{names[2]});
    EXPECT_EQ(check->unexpected, QStringList{u"Links/new.tif"_s});
    ASSERT_EQ(check->changed.size(), 2);
    EXPECT_EQ(check->changed[0].path, names[1]);
    EXPECT_EQ(check->changed[1].path, names[0]);
    EXPECT_EQ(check->changed[1].reason, u"content differs"_s);
}
