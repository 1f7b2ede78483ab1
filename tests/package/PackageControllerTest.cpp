#include "package/PackageController.h"
#include "package/PackageFonts.h"

#include "app/Alerts.h"
#include "host/OfflineIdmlHost.h"
#include "support/QtPrinters.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace quillon;
using namespace quillon::package;
using quillon::test::readAll;
using quillon::test::writeAll;

namespace {

// The offline host, with the steps a test wants to fail and the relinking it was asked for.
class FakeHost : public host::OfflineIdmlHost {
public:
    QString failPackaging; // the document whose package command fails
    QStringList relinked;  // "document -> links folder"

    app::Status packageDocument(const QString& docName, const QString& folder) override
    {
        if (docName == failPackaging)
            return app::makeError(u"The disk is locked."_s);
        return OfflineIdmlHost::packageDocument(docName, folder);
    }
    app::Status relinkLinksInDoc(const QString& docPath, const QString& linksFolder, bool createIdml) override
    {
        (void)createIdml;
        relinked << docPath + u" -> "_s + linksFolder;
        return {};
    }
};

QVariantMap link(const QString& path, const QString& status = u"OK"_s, const QVariantList& nested = {})
{
    return {{u"path"_s, path},
            {u"name"_s, QFileInfo(path).fileName()},
            {u"status"_s, status},
            {u"sizebytes"_s, QFileInfo(path).size()},
            {u"links"_s, nested}};
}

// A document at `path` (a copy of a real IDML file) with these link and font records.
PreflightedDocument document(const QString& path, const QVariantList& links, const QVariantList& fonts = {})
{
    QFile::copy(test::samplePath(u"idml/interview.idml"_s), path);
    PreflightedDocument document;
    document.docItem = TNFileItem::fileItemWithPath(path);
    document.tmpLinkData = {{path, QVariantMap{{u"children"_s, links}}}};
    document.tmpFontData = {{path, QVariantMap{{u"children"_s, fonts}}}};
    return document;
}

QStringList filesBelow(const QString& folder)
{
    QStringList files;
    for (const QString& entry : QDir(folder).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot))
        files << entry + (QFileInfo(QDir(folder).filePath(entry)).isDir() ? u"/"_s : QString());
    files.sort();
    return files;
}

struct Fixture {
    QTemporaryDir dir;
    QString media = test::samplePath(u"idml/sets/simpleidml/tests/regressiontests/IDML/media"_s);
    QString base = dir.filePath(u"packages"_s);
    QString other = dir.filePath(u"other/default.jpg"_s);
    FakeHost host;
    app::ScriptedAlertSink alerts;
    QList<PreflightedDocument> documents;
    QList<TNFileItem> extras;

    Fixture()
    {
        QDir().mkpath(base);
        QDir().mkpath(QFileInfo(other).path());
        writeAll(other, "another file of the same name");
        writeAll(dir.filePath(u"Caslon.pfb"_s), "outlines");
        writeAll(dir.filePath(u"Caslon.pfm"_s), "metrics");
        writeAll(dir.filePath(u"Caslon.AFM"_s), "metrics as text");
        const QVariantList fonts{
            QVariantMap{{u"name"_s, u"Caslon"_s}, {u"path"_s, dir.filePath(u"Caslon.pfb"_s)}},
            QVariantMap{{u"name"_s, u"Clouds"_s}, {u"path"_s, u"Activated from Adobe Fonts"_s}},
            QVariantMap{{u"name"_s, u"Unknown"_s}, {u"path"_s, u"?"_s}},
        };
        const QString nestedLink = media + u"/bouboune.jpg"_s;
        documents << document(dir.filePath(u"A.idml"_s),
                              {link(media + u"/default.jpg"_s), link(dir.filePath(u"gone.jpg"_s), u"Missing"_s),
                               link(media + u"/Jacques-Yves_Cousteau.jpg"_s, u"OK"_s,
                                    {link(nestedLink), link(dir.filePath(u"gone-too.psd"_s), u"Missing"_s)})},
                              fonts)
                  << document(dir.filePath(u"B.idml"_s), {link(other)}, fonts);
    }

    PackageOutcome run(PackageRunChoices choices, app::CancelFlag* cancel = nullptr,
                       PackageRunObserver* observer = nullptr, QStringList* delivered = nullptr)
    {
        PackageRequest request{host};
        request.documents = documents;
        request.extras = extras;
        choices.basePackageFolderPath = base;
        choices.fontsFromRecords = true;
        request.choices = choices;
        request.cancel = cancel;
        request.stagingFolder = dir.filePath(u"staging"_s);
        if (delivered != nullptr)
            request.deliver = [delivered](const QString& folder) { *delivered << folder; };
        QNPackageController controller;
        return controller.packageDocuments(request, {alerts, observer, {}});
    }
};

} // namespace

TEST(PackageController, UnifiedAndSeparatePackagesOfDocumentsSharingALinkName)
{
    Fixture f;
    QStringList delivered;
    PackageRunChoices unified;
    unified.namePart1 = u"Job:"_s;
    unified.namePart2 = u"42"_s;
    const PackageOutcome one = f.run(unified, nullptr, nullptr, &delivered);
    ASSERT_EQ(one.ended, PackageEnding::Completed);
    const QString folder = f.base + u"/Job_42"_s;
    EXPECT_EQ(delivered, QStringList{folder});
    EXPECT_EQ(filesBelow(folder), (QStringList{u"A.idml"_s, u"B.idml"_s, u"Document fonts/"_s, u"Links/"_s}));
    // The first default.jpg wins; the missing links, nested or not, are never copied.
    EXPECT_EQ(filesBelow(folder + u"/Links"_s),
              (QStringList{u"Jacques-Yves_Cousteau.jpg"_s, u"bouboune.jpg"_s, u"default.jpg"_s}));
    EXPECT_EQ(readAll(folder + u"/Links/default.jpg"_s), readAll(f.media + u"/default.jpg"_s));
    EXPECT_EQ(one.linksCopied, 3);
    // Type 1 companions go with the font, once for both documents; the others are listed.
    EXPECT_EQ(filesBelow(folder + u"/Document fonts"_s),
              (QStringList{u"Caslon.AFM"_s, u"Caslon.pfb"_s, u"Caslon.pfm"_s}));
    ASSERT_EQ(one.fontsNotCopied.size(), 2);
    EXPECT_EQ(one.fontsNotCopied.at(0).reason, u"activated from Adobe Fonts"_s);
    EXPECT_EQ(f.host.relinked, (QStringList{folder + u"/A.idml -> "_s + folder + u"/Links"_s,
                                            folder + u"/B.idml -> "_s + folder + u"/Links"_s}));

    // Separate, links beside the document ("packPlace"): each folder has its own default.jpg.
    f.host.relinked.clear();
    delivered.clear();
    PackageRunChoices separate;
    separate.mode = PackageMode::Separate;
    separate.namePart2 = u"_print"_s;
    separate.placeLinksInDocFolder = separate.relinkBesideDocument = true;
    separate.extrasInSubfolder = true;
    separate.extrasSubfolderName = u"Proofs"_s;
    QDir().mkpath(f.dir.filePath(u"notes/2024"_s));
    writeAll(f.dir.filePath(u"notes/2024/call.txt"_s), "call the printer");
    writeAll(f.dir.filePath(u"readme.txt"_s), "read me");
    f.extras = {TNFileItem::folderItemWithPath(f.dir.filePath(u"notes"_s)),
                TNFileItem::fileItemWithPath(f.dir.filePath(u"readme.txt"_s))};
    const PackageOutcome two = f.run(separate, nullptr, nullptr, &delivered);
    EXPECT_EQ(two.extrasCopied, 4); // both files in each of the two packages
    ASSERT_EQ(two.ended, PackageEnding::Completed);
    const QString a = f.base + u"/A_print"_s, b = f.base + u"/B_print"_s;
    EXPECT_EQ(delivered, (QStringList{a, b}));
    EXPECT_EQ(readAll(b + u"/default.jpg"_s), "another file of the same name");
    EXPECT_EQ(readAll(b + u"/Proofs/notes/2024/call.txt"_s), "call the printer");
    EXPECT_TRUE(QFileInfo::exists(a + u"/Proofs/readme.txt"_s));
    EXPECT_TRUE(QFileInfo::exists(a + u"/bouboune.jpg"_s) && !QFileInfo::exists(a + u"/Links"_s));
    EXPECT_EQ(f.host.relinked, (QStringList{a + u"/A.idml -> "_s + a, b + u"/B.idml -> "_s + b}));
    // The same run again numbers the folders rather than touching the first ones.
    EXPECT_EQ(f.run(separate).packageFolders, (QStringList{a + u"_1"_s, b + u"_1"_s}));
}

TEST(PackageController, AFailingStepStopsTheRunAndACancelRemovesTheHalfFolder)
{
    Fixture f;
    f.host.failPackaging = u"A.idml"_s;
    QStringList delivered;
    const PackageOutcome stopped = f.run({}, nullptr, nullptr, &delivered);
    EXPECT_EQ(stopped.ended, PackageEnding::Stopped);
    ASSERT_EQ(f.alerts.requests().size(), 1u);
    EXPECT_EQ(f.alerts.requests().front().title, u"Cannot collect fonts for document \"A.idml\""_s);
    EXPECT_TRUE(f.alerts.requests().front().message.startsWith(u"The disk is locked."_s));
    // Nothing after the failing step: B is not packaged, nothing relinked or delivered.
    EXPECT_FALSE(QFileInfo::exists(f.base + u"/A/B.idml"_s));
    EXPECT_TRUE(f.host.relinked.isEmpty() && delivered.isEmpty());

    // Cancelled as the links start copying: the run's folder goes, a folder that was there stays.
    f.host.failPackaging.clear();
    for (int i = 0; i < 8; ++i) {
        const QString big = f.dir.filePath(u"big%1.tif"_s.arg(i));
        writeAll(big, QByteArray(4 * 1024 * 1024, char('a' + i)));
        f.documents[0].tmpLinkData[f.documents[0].docItem.path] =
            QVariantMap{{u"children"_s, f.documents[0].links() + QVariantList{link(big)}}};
    }
    struct CancelOnCopy : PackageRunObserver {
        app::CancelFlag cancel;
        void progressChanged(const PackageProgress& progress) override
        {
            if (progress.bar1().status == u"Copying links..."_s)
                cancel.cancel();
        }
    } observer;
    QDir(f.base).removeRecursively();
    QDir().mkpath(f.base + u"/Kept"_s);
    PackageRunChoices choices;
    choices.namePart1 = u"Fresh"_s;
    const PackageOutcome cancelled = f.run(choices, &observer.cancel, &observer);
    EXPECT_EQ(cancelled.ended, PackageEnding::Cancelled);
    EXPECT_LT(cancelled.linksCopied, 9);
    EXPECT_EQ(filesBelow(f.base), QStringList{u"Kept/"_s});
    choices.namePart1 = u"Kept"_s;
    choices.overwrite = true;
    observer.cancel.reset();
    EXPECT_EQ(f.run(choices, &observer.cancel, &observer).ended, PackageEnding::Cancelled);
    EXPECT_TRUE(QFileInfo(f.base + u"/Kept"_s).isDir());
}
