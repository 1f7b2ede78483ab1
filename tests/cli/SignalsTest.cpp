#include "CliRunner.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>

namespace {

using quillon::test::everythingBelow;
using quillon::test::samplePath;
using quillon::test::startQuillon;

// A command's arguments over the largest sample many times, so that it is still at work when
// the signal comes.
QStringList longRun(const char* command)
{
    QStringList arguments{QLatin1String(command)};
    for (int i = 0; i < 40; ++i)
        arguments << samplePath(QStringLiteral("idml/manual_template_test2.idml"));
    return arguments;
}

TEST(CliSignals, HangUpAndTerminateLeaveNoTemporaryFolder)
{
    const struct {
        const char* command;
        int signal;
        int status;
    } cases[] = {{"links", SIGHUP, 129}, {"info", SIGHUP, 129}, {"info", SIGTERM, 143}, {"preflight", SIGHUP, 129}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.command);
        QTemporaryDir tmp;
        QProcess process;
        startQuillon(process, longRun(c.command), {QStringLiteral("TMPDIR=") + tmp.path()});
        ASSERT_TRUE(process.waitForStarted());
        QElapsedTimer waited;
        waited.start();
        while (everythingBelow(tmp.path()).isEmpty() && waited.elapsed() < 30000)
            QThread::msleep(2);
        QThread::msleep(200); // well into a document
        ::kill(static_cast<pid_t>(process.processId()), c.signal);
        QElapsedTimer stopping;
        stopping.start();
        ASSERT_TRUE(process.waitForFinished(30000));
        EXPECT_LT(stopping.elapsed(), 5000) << "a cancel takes effect at once";
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), c.status) << process.readAllStandardError().toStdString();
        EXPECT_TRUE(everythingBelow(tmp.path()).isEmpty()) << everythingBelow(tmp.path()).join(u' ').toStdString();
    }
}

TEST(CliSignals, AReaderThatGoesAwayEndsTheRunCleanlyWithStatus2)
{
    for (const char* command : {"info", "links"}) {
        SCOPED_TRACE(command);
        QTemporaryDir tmp;
        // The pipe's reader exits at once; the command's first document comes later.
        const QStringList arguments =
            QStringList{QStringLiteral("-c"), QStringLiteral("\"$0\" \"$@\" | true; exit ${PIPESTATUS[0]}"),
                        QStringLiteral(QUILLON_CLI_PATH)} +
            longRun(command);
        QProcess process;
        startQuillon(process, arguments, {QStringLiteral("TMPDIR=") + tmp.path()}, QStringLiteral("bash"));
        ASSERT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(process.exitCode(), 2);
        EXPECT_TRUE(process.readAllStandardError().contains("quillon: cannot write standard output: Broken pipe"));
        EXPECT_TRUE(everythingBelow(tmp.path()).isEmpty()) << everythingBelow(tmp.path()).join(u' ').toStdString();
    }
}

TEST(CliSignals, AFileSizeLimitFailsTheWriteInsteadOfKillingTheRun)
{
    // Under "ulimit -f" a write past the limit raises SIGXFSZ, whose default ends the process
    // without removing its work folder; the command reports the write instead.
    QTemporaryDir tmp;
    QProcess process;
    startQuillon(process,
                 {QStringLiteral("-c"), QStringLiteral("ulimit -f 100; exec \"$0\" \"$@\""),
                  QStringLiteral(QUILLON_CLI_PATH), QStringLiteral("preflight"),
                  samplePath(QStringLiteral("idml/tripple.idml"))},
                 {QStringLiteral("TMPDIR=") + tmp.path()}, QStringLiteral("bash"));
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    const QByteArray err = process.readAllStandardError();
    EXPECT_EQ(process.exitCode(), 2) << err.toStdString();
    // The copy's own reason, not the library's "Input/output error".
    EXPECT_TRUE(err.contains("tripple.idml") && err.toLower().contains("file too large")) << err.toStdString();
    EXPECT_TRUE(everythingBelow(tmp.path()).isEmpty()) << everythingBelow(tmp.path()).join(u' ').toStdString();
}

} // namespace
