#include "host/AppleScriptValue.h"
#include "host/OsaScriptRunner.h"
#include "support/QtPrinters.h"
#include "support/RecordingScriptRunner.h"

#include "support/TestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon::host;

namespace {

// A stand-in for the system's script runner: records its arguments and standard input, then
// prints what the test asked for.
QString writeFakeRunner(const QTemporaryDir& dir, const QString& body)
{
    const QString path = dir.filePath(QStringLiteral("osascript"));
    quillon::test::writeAll(path,
                            (QStringLiteral("#!/bin/sh\nprintf '%s\\n' \"$@\" > '%1'\ncat > '%2'\n")
                                 .arg(dir.filePath(QStringLiteral("args")), dir.filePath(QStringLiteral("stdin"))) +
                             body)
                                .toUtf8());
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

} // namespace

TEST(ScriptRunner, NeitherSourceNorPathGivesTheNoSourceOutcomeAndSourceWinsOverPath)
{
    RecordingScriptRunner runner;
    const QVariantMap none = runner.runAppleScriptWithSourceString(QString(), QString());
    EXPECT_FALSE(none.contains(kScriptResultKey));
    EXPECT_EQ(scriptErrorDict(none),
              (QVariantMap{{kScriptErrorMessageKey, QStringLiteral("no source provided")},
                           {kScriptErrorBriefMessageKey, QStringLiteral("no source provided")}}));
    EXPECT_TRUE(runner.calls().empty());

    runner.runAppleScriptWithSourceString(QStringLiteral("return 1"), QStringLiteral("/scripts/a.scpt"));
    runner.runAppleScriptWithSourceString(QString(), QStringLiteral("/scripts/b.scpt"));
    const auto calls = runner.calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].source, QStringLiteral("return 1"));
    EXPECT_EQ(calls[1].path, QStringLiteral("/scripts/b.scpt"));
}

TEST(ScriptRunner, SuccessIsJudgedByTheErrorCountAndResultsReadAsDescriptors)
{
    const QVariantMap ok = scriptSuccessOutcome(QVariantList{QStringLiteral("a"), 3, true, 2.5});
    EXPECT_TRUE(scriptSucceeded(ok));
    EXPECT_EQ(scriptResultStrings(ok),
              (QStringList{QStringLiteral("a"), QStringLiteral("3"), QStringLiteral("true"), QStringLiteral("2.5")}));

    // A failed outcome that still carries a result is a failure.
    QVariantMap failed = scriptErrorOutcome(QStringLiteral("long"), QStringLiteral("brief"), -1728);
    failed.insert(kScriptResultKey, QStringLiteral("ignored"));
    EXPECT_FALSE(scriptSucceeded(failed));
    EXPECT_EQ(scriptBriefErrorMessage(failed), QStringLiteral("brief"));
    EXPECT_EQ(scriptResultString(failed), QString());
}

TEST(ScriptRunner, SourceFormValuesAreRead)
{
    // Quoted text, whole numbers, flags and lists are read back in the random round trips.
    EXPECT_EQ(parseAppleScriptValue(QStringLiteral("{-3.5, missing value}")), QVariant(QVariantList{-3.5, QVariant()}));
    EXPECT_EQ(
        parseAppleScriptValue(QStringLiteral("{name:\"Doc\", |page count|:4}")),
        QVariant(QVariantMap{{QStringLiteral("name"), QStringLiteral("Doc")}, {QStringLiteral("page count"), 4LL}}));
    // Values with no plain form stay as their source text.
    EXPECT_EQ(parseAppleScriptValue(QStringLiteral("document \"A, B\" of application \"Adobe InDesign 2024\"")),
              QVariant(QStringLiteral("document \"A, B\" of application \"Adobe InDesign 2024\"")));
    EXPECT_EQ(
        parseAppleScriptValue(QStringLiteral("{«class cdoc», date \"Monday, 1 January 2024\"}")),
        QVariant(QVariantList{QStringLiteral("«class cdoc»"), QStringLiteral("date \"Monday, 1 January 2024\"")}));
    EXPECT_EQ(parseAppleScriptValue(QStringLiteral("\"line\\nnext\"")), QVariant(QStringLiteral("line\nnext")));
}

TEST(ScriptRunner, RunnerErrorOutputBecomesTheErrorDictionary)
{
    const QVariantMap error = scriptErrorFromRunnerOutput(
        QStringLiteral("0:120: execution error: Adobe InDesign 2024 got an error: No documents are open. (-1728)\n"));
    EXPECT_EQ(error.value(kScriptErrorMessageKey).toString(),
              QStringLiteral("Adobe InDesign 2024 got an error: No documents are open."));
    EXPECT_EQ(error.value(kScriptErrorBriefMessageKey).toString(), QStringLiteral("No documents are open."));
    EXPECT_EQ(error.value(kScriptErrorNumberKey).toLongLong(), -1728);
    EXPECT_EQ(error.value(kScriptErrorAppNameKey).toString(), QStringLiteral("Adobe InDesign 2024"));

    const QVariantMap odd = scriptErrorFromRunnerOutput(QStringLiteral("something unexpected"));
    EXPECT_EQ(odd.value(kScriptErrorBriefMessageKey).toString(), QStringLiteral("something unexpected"));
    EXPECT_FALSE(odd.contains(kScriptErrorNumberKey));
}

TEST(ScriptRunner, RealRunnerFeedsTheSourceOnStandardInputAndReadsTheSourceForm)
{
    QTemporaryDir dir;
    const QString fake = writeFakeRunner(dir, QStringLiteral("echo '{\"Mac HD:a.indd\", \"/a.indd\", \"4\"}'\n"));
    OsaScriptRunner runner(fake);
    const QString source = QStringLiteral("tell app \"Adobe InDesign 2024\" \n return name \n end tell");
    const QVariantMap outcome = runner.runAppleScriptWithSourceString(source, QStringLiteral("/ignored.scpt"));
    ASSERT_TRUE(scriptSucceeded(outcome));
    EXPECT_EQ(scriptResultStrings(outcome),
              (QStringList{QStringLiteral("Mac HD:a.indd"), QStringLiteral("/a.indd"), QStringLiteral("4")}));
    EXPECT_EQ(quillon::test::readAll(dir.filePath(QStringLiteral("stdin"))), source.toUtf8());
    // The path is not passed on when a source is given.
    EXPECT_EQ(quillon::test::readAll(dir.filePath(QStringLiteral("args"))), QByteArray("-s\ns\n"));
}

TEST(ScriptRunner, RealRunnerReportsExecutionErrorsAndMissingPieces)
{
    QTemporaryDir dir;
    const QString fake = writeFakeRunner(
        dir, QStringLiteral("echo '0:44: execution error: Finder got an error: Not authorized to send Apple events to "
                            "Finder. (-1743)' >&2\nexit 1\n"));
    OsaScriptRunner runner(fake);
    const QVariantMap outcome = runner.runAppleScriptWithSourceString(QStringLiteral("tell app \"Finder\" to name"));
    EXPECT_FALSE(outcome.contains(kScriptResultKey));
    EXPECT_EQ(scriptBriefErrorMessage(outcome), QStringLiteral("Not authorized to send Apple events to Finder."));
    EXPECT_EQ(scriptErrorDict(outcome).value(kScriptErrorNumberKey).toLongLong(), -1743);

    // A compiled script that is not there.
    const QVariantMap noFile =
        runner.runAppleScriptWithSourceString(QString(), dir.filePath(QStringLiteral("no.scpt")));
    EXPECT_TRUE(scriptBriefErrorMessage(noFile).contains(QStringLiteral("no.scpt")));

    // No script runner on this system: every run is an error that says why.
    OsaScriptRunner missing(dir.filePath(QStringLiteral("not-here/osascript")));
    const QVariantMap absent = missing.runAppleScriptWithSourceString(QStringLiteral("return 1"));
    EXPECT_FALSE(scriptSucceeded(absent));
    EXPECT_TRUE(scriptBriefErrorMessage(absent).contains(QStringLiteral("was not found")));
    EXPECT_TRUE(scriptBriefErrorMessage(absent).contains(QStringLiteral("not-here/osascript")));
}
