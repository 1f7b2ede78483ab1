#include "preflight/AppleScriptHost.h"
#include "QtPrinters.h"
#include "preflight/RecordingScriptRunner.h"

#include <gtest/gtest.h>

using namespace quillon::preflight;

namespace {

const QString kApp = QStringLiteral("Adobe InDesign 2024");
const QString kQuotedName = QStringLiteral("Ann \"Q\" Book.indd");
const QString kEscapedName = QStringLiteral("Ann \\\"Q\\\" Book.indd");

struct Rig {
    RecordingScriptRunner scripts;
    AppleScriptHost host{scripts, kApp};
};

} // namespace

TEST(AppleScriptHost, DocumentRecordScriptAndItsAnswer)
{
    Rig rig;
    rig.scripts.pushResult(QVariantList{QStringLiteral("Mac HD:Jobs:Book.indd"), QStringLiteral("/Jobs/Book.indd"),
                                        QStringLiteral("Book.indd"), QStringLiteral("12"), QStringLiteral("0"),
                                        QStringLiteral("19.0.1.205")});
    const auto record = rig.host.pathsAndNameOfDocument(DocumentReference::active());
    ASSERT_TRUE(record.ok());
    EXPECT_EQ(record->size(), kRecordItemCount);
    EXPECT_EQ(record->at(kRecordPosixPath), QStringLiteral("/Jobs/Book.indd"));
    EXPECT_EQ(record->at(kRecordLinkCount), QStringLiteral("0"));
    EXPECT_EQ(
        rig.scripts.lastSource(),
        QStringLiteral("tell app \"Adobe InDesign 2024\" \n tell active document \n set res to {} \n set pathHFS "
                       "to (full name) as string \n set end of res to pathHFS \n set end of res to posix path of "
                       "pathHFS \n set end of res to name \n set end of res to (count pages) as string \n set end "
                       "of res to (count links) as string \n end tell \n set end of res to version \n end tell \n "
                       "return res"));

    // A named document of a batch; items without a text form are left out.
    rig.scripts.pushResult(QVariantList{QStringLiteral("a"), QVariant(), QStringLiteral("b")});
    const auto named = rig.host.pathsAndNameOfDocument(DocumentReference::named(kQuotedName));
    EXPECT_EQ(*named, (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_TRUE(rig.scripts.lastSource().contains(QStringLiteral("\n tell document \"%1\" \n").arg(kEscapedName)));

    // An empty answer is an empty record, not a failure.
    rig.scripts.pushResult(QVariantList{});
    EXPECT_TRUE(rig.host.pathsAndNameOfDocument(DocumentReference::active())->isEmpty());

    rig.scripts.pushError(QStringLiteral("The document has no full name."), -1728);
    const auto failed = rig.host.pathsAndNameOfDocument(DocumentReference::active());
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.error().message, QStringLiteral("The document has no full name."));
}

TEST(AppleScriptHost, ConvertedDocumentScripts)
{
    Rig rig;
    rig.scripts.pushResult(QStringLiteral("Mac HD:a.indd"));
    EXPECT_EQ(*rig.host.fullNameOfDocument(DocumentReference::named(kQuotedName)), QStringLiteral("Mac HD:a.indd"));
    EXPECT_EQ(
        rig.scripts.lastSource(),
        QStringLiteral("tell app \"Adobe InDesign 2024\" to return full name of document \"%1\"").arg(kEscapedName));

    EXPECT_TRUE(
        rig.host.saveDocument(DocumentReference::named(QStringLiteral("b.indd")), QStringLiteral("/J/b.indd")).ok());
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("tell app \"Adobe InDesign 2024\" to save document \"b.indd\" to \"/J/b.indd\""));
}

TEST(AppleScriptHost, ExportScripts)
{
    Rig rig;
    EXPECT_TRUE(rig.host
                    .exportDocumentForPreflight(kQuotedName, QStringLiteral("Mac HD:tmp:Quillon:Ann \"Q\" Book.idml"),
                                                QStringLiteral("/tmp/Quillon/Ann \"Q\" Book.idml"))
                    .ok());
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("with timeout of 36000 seconds \n tell application \"Adobe InDesign 2024\" to export "
                             "document \"%1\" format InDesign markup to \"Mac HD:tmp:Quillon:Ann \\\"Q\\\" Book.idml\" "
                             "without showing options \n end timeout")
                  .arg(kEscapedName));

    EXPECT_TRUE(rig.host.exportDocumentToIdml(QStringLiteral("a.indd"), QStringLiteral("/Pkg/a.idml")).ok());
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("tell application \"Adobe InDesign 2024\" to export document \"a.indd\" format InDesign "
                             "markup to \"/Pkg/a.idml\" without showing options"));

    EXPECT_TRUE(
        rig.host.exportDocumentToPdf(QStringLiteral("a.indd"), QStringLiteral("/Pkg/a.pdf"), QStringLiteral("[Press]"))
            .ok());
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("tell application \"Adobe InDesign 2024\" \n set page range of PDF export preferences to "
                             "all pages \n export document \"a.indd\" format PDF type to \"/Pkg/a.pdf\" using PDF "
                             "export preset \"[Press]\" without showing options \n end tell"));

    rig.scripts.pushError(QStringLiteral("Cannot open a modal dialog or alert is active."));
    const auto failed = rig.host.exportDocumentToIdml(QStringLiteral("a.indd"), QStringLiteral("/Pkg/a.idml"));
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.error().message, QStringLiteral("Cannot open a modal dialog or alert is active."));
}

TEST(AppleScriptHost, PackagingAndDocumentScripts)
{
    Rig rig;
    rig.scripts.pushResult(
        QVariantList{QStringLiteral("[High Quality Print]"), QStringLiteral("[Smallest File Size]")});
    EXPECT_EQ(*rig.host.pdfExportPresetNames(),
              (QStringList{QStringLiteral("[High Quality Print]"), QStringLiteral("[Smallest File Size]")}));
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("tell application \"Adobe InDesign 2024\" to return name of PDF export presets"));

    EXPECT_TRUE(rig.host.packageDocument(kQuotedName, QStringLiteral("/Pkg/Book Folder")).ok());
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("tell application \"Adobe InDesign 2024\" to package document \"%1\" to \"/Pkg/Book "
                             "Folder\" copying fonts true copying linked graphics no copying profiles no updating "
                             "graphics no ignore preflight errors yes creating report no including hidden layers yes")
                  .arg(kEscapedName));

    EXPECT_TRUE(rig.host.invokePackageCommand().ok());
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("tell application \"Adobe InDesign 2024\" to invoke menu action \"$ID/Packa&ge...\""));

    EXPECT_TRUE(rig.host.activateAndOpenDocument(QStringLiteral("/Jobs/Say \"hi\".indd")).ok());
    EXPECT_EQ(rig.scripts.lastSource(), QStringLiteral("tell app \"Adobe InDesign 2024\" \n activate \n open "
                                                       "\"/Jobs/Say \\\"hi\\\".indd\" \n end"));

    EXPECT_TRUE(rig.host.openDocument(QStringLiteral("/Pkg/a.indd"), true).ok());
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("tell app \"Adobe InDesign 2024\" to open \"/Pkg/a.indd\" showing window true"));
    EXPECT_TRUE(rig.host.openDocument(QStringLiteral("/Pkg/a.indd"), false).ok());
    EXPECT_TRUE(rig.scripts.lastSource().endsWith(QStringLiteral("showing window false")));

    EXPECT_TRUE(rig.host.closeDocument(QStringLiteral("a.indd")).ok());
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("tell app \"Adobe InDesign 2024\" to close document \"a.indd\" saving no"));

    rig.scripts.pushError(QStringLiteral("not open"));
    rig.host.closeDocumentIfOpen(QStringLiteral("/Pkg/a.indd"));
    EXPECT_EQ(rig.scripts.lastSource(), QStringLiteral("try \n tell app \"Adobe InDesign 2024\" to close document "
                                                       "\"/Pkg/a.indd\" saving no \n end try"));

    EXPECT_TRUE(rig.host.setScriptUserInteraction(true).ok());
    EXPECT_EQ(rig.scripts.lastSource(), QStringLiteral("tell app \"Adobe InDesign 2024\" to set user interaction level "
                                                       "of script preferences to interact with all"));
    EXPECT_TRUE(rig.host.setScriptUserInteraction(false).ok());
    EXPECT_TRUE(rig.scripts.lastSource().endsWith(QStringLiteral("to never interact")));
}

TEST(AppleScriptHost, AnchoredLinkPageScriptAcceptsOnlyDecimalIds)
{
    Rig rig;
    rig.scripts.pushResult(QStringLiteral("A-3"));
    EXPECT_EQ(*rig.host.pageNameForLinkID(QStringLiteral("Book.indd"), QStringLiteral("2417")), QStringLiteral("A-3"));
    EXPECT_EQ(rig.scripts.lastSource(),
              QStringLiteral("tell app \"Adobe InDesign 2024\" \n tell document \"Book.indd\" \n return name of parent "
                             "page of parent of link id 2417 \n end tell \n end tell"));

    rig.scripts.pushError(QStringLiteral("Object is invalid."));
    EXPECT_EQ(rig.host.pageNameForLinkID(QStringLiteral("Book.indd"), QStringLiteral("9")).error().message,
              QStringLiteral("Object is invalid."));

    const size_t before = rig.scripts.calls().size();
    EXPECT_FALSE(
        rig.host.pageNameForLinkID(QStringLiteral("Book.indd"), QStringLiteral("1 \n do shell script \"x\"")).ok());
    EXPECT_EQ(rig.scripts.calls().size(), before);
}

TEST(AppleScriptHost, LinkActionsAreNotAvailableWithoutTheirScriptObjects)
{
    Rig rig;
    const auto shown = rig.host.showLinkID(QStringLiteral("12"), QStringLiteral("Book.indd"));
    ASSERT_FALSE(shown.ok());
    EXPECT_TRUE(shown.error().message.contains(QStringLiteral("not available")));
    EXPECT_FALSE(
        rig.host.relinkLinkID(QStringLiteral("12"), QStringLiteral("/x.tif"), QStringLiteral("Book.indd")).ok());
    EXPECT_FALSE(rig.host.relinkLinksInDoc(QStringLiteral("/Book.indd"), QStringLiteral("/Links"), true).ok());
    EXPECT_TRUE(rig.scripts.calls().empty());
}
