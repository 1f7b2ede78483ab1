#include "host/AppleScriptHost.h"
#include "support/QtPrinters.h"
#include "support/RecordingScriptRunner.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::host;

namespace {

const QString kApp = QStringLiteral("Adobe InDesign 2024");
const QString kQuotedName = QStringLiteral("Ann \"Q\" Book.indd");
const QString kEscapedName = QStringLiteral("Ann \\\"Q\\\" Book.indd");

struct Rig {
    RecordingScriptRunner scripts;
    AppleScriptHost host{scripts, kApp};
};

} // namespace

TEST(AppleScriptHost, DocumentRecordAnswerIsParsed)
{
    Rig rig;
    rig.scripts.pushResult(QVariantList{QStringLiteral("Mac HD:Jobs:Book.indd"), QStringLiteral("/Jobs/Book.indd"),
                                        QStringLiteral("Book.indd"), QStringLiteral("12"), QStringLiteral("0"),
                                        QStringLiteral("19.0.1.205")});
    const auto record = rig.host.pathsAndNameOfDocument(DocumentReference::active());
    ASSERT_TRUE(record.ok());
    EXPECT_EQ(record->posixPath, QStringLiteral("/Jobs/Book.indd"));
    EXPECT_EQ(record->linkCount, QStringLiteral("0"));
    EXPECT_EQ(record->InDesignVersion, QStringLiteral("19.0.1.205"));

    // A named document of a batch; items without a text form are left out.
    rig.scripts.pushResult(QVariantList{QStringLiteral("a"), QVariant(), QStringLiteral("b")});
    const auto named = rig.host.pathsAndNameOfDocument(DocumentReference::named(kQuotedName));
    EXPECT_EQ(named->hfsPath, QStringLiteral("a"));
    EXPECT_EQ(named->posixPath, QStringLiteral("b"));
    EXPECT_TRUE(named->fileName.isEmpty());
    EXPECT_TRUE(rig.scripts.lastSource().contains(QStringLiteral("\n tell document \"%1\" \n").arg(kEscapedName)));

    // An empty answer is an empty record, not a failure.
    rig.scripts.pushResult(QVariantList{});
    EXPECT_TRUE(rig.host.pathsAndNameOfDocument(DocumentReference::active())->isEmpty());

    rig.scripts.pushError(QStringLiteral("The document has no full name."), -1728);
    const auto failed = rig.host.pathsAndNameOfDocument(DocumentReference::active());
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.error().message, QStringLiteral("The document has no full name."));
}

TEST(AppleScriptHost, QuotesInNamesAndPathsAreEscaped)
{
    Rig rig;
    rig.scripts.pushResult(QStringLiteral("Mac HD:a.indd"));
    EXPECT_EQ(*rig.host.fullNameOfDocument(DocumentReference::named(kQuotedName)), QStringLiteral("Mac HD:a.indd"));
    EXPECT_TRUE(rig.scripts.lastSource().contains(QStringLiteral("document \"%1\"").arg(kEscapedName)));

    EXPECT_TRUE(rig.host.packageDocument(kQuotedName, QStringLiteral("/Pkg/Book Folder")).ok());
    EXPECT_TRUE(rig.scripts.lastSource().contains(QStringLiteral("document \"%1\"").arg(kEscapedName)));
    // Opening is checked through the Package command in the driver's tests.
}

TEST(AppleScriptHost, AnswersFlagsAndErrors)
{
    Rig rig;
    rig.scripts.pushResult(
        QVariantList{QStringLiteral("[High Quality Print]"), QStringLiteral("[Smallest File Size]")});
    EXPECT_EQ(*rig.host.pdfExportPresetNames(),
              (QStringList{QStringLiteral("[High Quality Print]"), QStringLiteral("[Smallest File Size]")}));

    // Each flag reaches the script.
    EXPECT_TRUE(rig.host.openDocument(QStringLiteral("/Pkg/a.indd"), false).ok());
    EXPECT_TRUE(rig.scripts.lastSource().endsWith(QStringLiteral("showing window false")));
    EXPECT_TRUE(rig.host.setScriptUserInteraction(false).ok());
    EXPECT_TRUE(rig.scripts.lastSource().endsWith(QStringLiteral("to never interact")));

    rig.scripts.pushError(QStringLiteral("Cannot open a modal dialog or alert is active."));
    const auto failed = rig.host.exportDocumentToIdml(QStringLiteral("a.indd"), QStringLiteral("/Pkg/a.idml"));
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.error().message, QStringLiteral("Cannot open a modal dialog or alert is active."));

    // Closing a document that may not be open swallows the error inside the script.
    rig.scripts.pushError(QStringLiteral("not open"));
    rig.host.closeDocumentIfOpen(QStringLiteral("/Pkg/a.indd"));
    EXPECT_TRUE(rig.scripts.lastSource().startsWith(QStringLiteral("try \n")));
}

TEST(AppleScriptHost, AnchoredLinkPageScriptAcceptsOnlyDecimalIds)
{
    Rig rig;
    rig.scripts.pushResult(QStringLiteral("A-3"));
    EXPECT_EQ(*rig.host.pageNameForLinkID(QStringLiteral("Book.indd"), QStringLiteral("2417")), QStringLiteral("A-3"));
    EXPECT_TRUE(rig.scripts.lastSource().contains(QStringLiteral("link id 2417 ")));

    rig.scripts.pushError(QStringLiteral("Object is invalid."));
    EXPECT_EQ(rig.host.pageNameForLinkID(QStringLiteral("Book.indd"), QStringLiteral("9")).error().message,
              QStringLiteral("Object is invalid."));

    const size_t before = rig.scripts.calls().size();
    EXPECT_FALSE(
        rig.host.pageNameForLinkID(QStringLiteral("Book.indd"), QStringLiteral("1 \n do shell script \"x\"")).ok());
    EXPECT_EQ(rig.scripts.calls().size(), before);
}
