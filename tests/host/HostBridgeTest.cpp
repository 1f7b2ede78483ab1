#include "host/AppleEventPermission.h"
#include "host/HfsPath.h"
#include "host/HostEnvironment.h"
#include "host/InDesignVersion.h"
#include "support/QtPrinters.h"
#include "support/RecordingScriptRunner.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/ToolRunner.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::host;

namespace {

class FakeEnvironment : public HostEnvironment {
public:
    QString resourcePath() const override { return resources; }
    QString bundlePath() const override { return bundle; }
    QString shortVersionString() const override { return version; }
    QStringList runningApplicationPaths() const override { return running; }
    void terminate() override { ++terminations; }

    QString resources = QStringLiteral("/Applications/Quillon.app/Contents/Resources");
    QString bundle = QStringLiteral("/Applications/Quillon.app");
    QString version = QStringLiteral("2.4");
    QStringList running;
    int terminations = 0;
};

class RecordingToolRunner : public app::ToolRunner {
public:
    using app::ToolRunner::runTaskWithPath;
    std::optional<QString> runTaskWithPath(const QString& path, const QStringList& arguments, const QString& currDir,
                                           bool returnResult) override
    {
        calls.push_back({path, arguments, currDir, returnResult});
        return std::nullopt;
    }
    struct Call {
        QString path;
        QStringList arguments;
        QString currDir;
        bool returnResult;
    };
    std::vector<Call> calls;
};

struct ProbeRig {
    RecordingScriptRunner scripts;
    app::ScriptedAlertSink alerts;
    RecordingToolRunner tools;
    FakeEnvironment environment;
    AppleEventServices services{scripts, alerts, tools, environment};
};

const QString kInDesign2024 = QStringLiteral("/Applications/Adobe InDesign 2024/Adobe InDesign 2024.app");
const QString kInDesign2023 = QStringLiteral("/Applications/Adobe InDesign 2023/Adobe InDesign 2023.app");

} // namespace

TEST(InDesignVersion, NamesAreMatchedInTableOrder)
{
    EXPECT_EQ(InDesignVersionForPath(kInDesign2024), QStringLiteral("Adobe InDesign 2024"));
    EXPECT_EQ(InDesignVersionForPath(QStringLiteral("/Applications/Adobe InDesign CC 2019/Plug-Ins/Quillon")),
              QStringLiteral("Adobe InDesign CC 2019"));
    // "InDesign CC" alone is the 2013 release; the year-named CC releases are matched before it.
    EXPECT_EQ(InDesignVersionForPath(QStringLiteral("/Applications/Adobe InDesign CC/Adobe InDesign CC.app")),
              QStringLiteral("Adobe InDesign CC"));
    EXPECT_EQ(InDesignVersionForPath(QStringLiteral("/Applications/Adobe InDesign 2025/Adobe InDesign 2025.app")),
              QString());
    EXPECT_EQ(defaultInDesignVersion(), QStringLiteral("Adobe InDesign 2023"));
}

TEST(InDesignVersion, AnInstallationInsideAnInDesignFolderWinsThenTheRunningOnesDecide)
{
    FakeEnvironment environment;
    app::ScriptedAlertSink alerts;
    EXPECT_EQ(InDesignVersionForStartup(environment, alerts), defaultInDesignVersion());
    environment.resources = QStringLiteral("/Applications/Adobe InDesign 2022/Scripts/Quillon.app/Contents/Resources");
    environment.running = {kInDesign2024};
    EXPECT_EQ(InDesignVersionForStartup(environment, alerts), QStringLiteral("Adobe InDesign 2022"));
    environment.resources = FakeEnvironment().resources;

    environment.running = {QStringLiteral("/System/Applications/Mail.app"), kInDesign2024};
    EXPECT_EQ(InDesignVersionForStartup(environment, alerts), QStringLiteral("Adobe InDesign 2024"));
    EXPECT_TRUE(alerts.requests().empty());

    // A release newer than the table is running alone: the default name.
    environment.running = {QStringLiteral("/Applications/Adobe InDesign 2026/Adobe InDesign 2026.app")};
    EXPECT_EQ(InDesignVersionForStartup(environment, alerts), defaultInDesignVersion());

    // Two running: the first the system reports is used, and the notice names it.
    environment.running = {kInDesign2023, kInDesign2024};
    EXPECT_EQ(InDesignVersionForStartup(environment, alerts), QStringLiteral("Adobe InDesign 2023"));
    const auto requests = alerts.requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].title, QStringLiteral("Multiple InDesign versions are open"));
    EXPECT_EQ(requests[0].message,
              app::withSupportContact(QStringLiteral("Quillon will use Adobe InDesign 2023.\n\nTo avoid errors, please "
                                                     "leave only one InDesign version open.")));
    EXPECT_FALSE(requests[0].critical);
}

TEST(InDesignVersion, RunningApplicationsAreReadFromTheProcessList)
{
    const QString listing =
        QStringLiteral("/sbin/launchd\n/Applications/Adobe InDesign 2024/Adobe InDesign 2024.app/Contents/MacOS/Adobe "
                       "InDesign 2024\n/System/Applications/Mail.app/Contents/MacOS/Mail\n/Applications/Adobe "
                       "InDesign 2024/Adobe InDesign 2024.app/Contents/MacOS/helper\n");
    EXPECT_EQ(applicationBundlesInProcessList(listing),
              (QStringList{kInDesign2024, QStringLiteral("/System/Applications/Mail.app")}));

    FakeEnvironment environment;
    environment.running = applicationBundlesInProcessList(listing);
    EXPECT_EQ(launchedInDesignPaths(environment), QStringList{kInDesign2024});
}

TEST(HfsPath, ConvertsThroughAScriptAndHandsBackTheErrorOnFailure)
{
    RecordingScriptRunner scripts;
    scripts.pushResult(QStringLiteral("Macintosh HD:Users:ann:Say \"hi\".idml"));
    EXPECT_EQ(hfsPathFromPath(scripts, QStringLiteral("~/Say \"hi\".idml")),
              QStringLiteral("Macintosh HD:Users:ann:Say \"hi\".idml"));
    EXPECT_EQ(scripts.lastSource(),
              QStringLiteral("(\"%1/Say \\\"hi\\\".idml\" as POSIX file) as string").arg(QDir::homePath()));

    scripts.pushError(QStringLiteral("Can't make it into a file."), -1700);
    QVariantMap errDict;
    EXPECT_EQ(hfsPathFromPath(scripts, QStringLiteral("/tmp/x.idml"), &errDict), QString());
    EXPECT_EQ(errDict.value(kScriptErrorBriefMessageKey).toString(), QStringLiteral("Can't make it into a file."));
    EXPECT_EQ(errDict.value(kScriptErrorNumberKey).toInt(), -1700);
    // The out-parameter is optional.
    scripts.pushError(QStringLiteral("again"));
    EXPECT_EQ(hfsPathFromPath(scripts, QStringLiteral("/tmp/x.idml")), QString());
}

TEST(AppleEventPermission, ErrorNumber1743WithAnOddMessageLeadsToResetAndRelaunch)
{
    ProbeRig rig;
    rig.scripts.pushError(QStringLiteral("Something unusual happened."), -1743);
    checkAuthorizationToSendAEToApp(QStringLiteral("Adobe InDesign 2024"), QStringLiteral("Quillon"), rig.services);

    EXPECT_EQ(rig.scripts.sources(), QStringList{authorizationProbeScript(QStringLiteral("Adobe InDesign 2024"))});
    const auto alerts = rig.alerts.requests();
    ASSERT_EQ(alerts.size(), 2u);
    EXPECT_EQ(alerts[0].title, QStringLiteral("Quillon is not yet authorized to control Adobe InDesign 2024"));
    EXPECT_EQ(*alerts[0].buttons, QStringList{QStringLiteral("Reset Permissions")});
    EXPECT_EQ(alerts[1].title, QStringLiteral("Permissions have been reset"));
    EXPECT_EQ(*alerts[1].buttons, QStringList{QStringLiteral("Relaunch")});

    ASSERT_EQ(rig.tools.calls.size(), 2u);
    EXPECT_EQ(rig.tools.calls[0].path, QStringLiteral("/usr/bin/tccutil"));
    EXPECT_EQ(rig.tools.calls[0].arguments, (QStringList{QStringLiteral("reset"), QStringLiteral("AppleEvents")}));
    EXPECT_EQ(rig.tools.calls[1].path, QStringLiteral("/bin/sh"));
    EXPECT_EQ(
        rig.tools.calls[1].arguments,
        (QStringList{QStringLiteral("-c"), QStringLiteral("sleep 3.000000; open \"/Applications/Quillon.app\"")}));
    EXPECT_EQ(rig.environment.terminations, 1);
}

TEST(AppleEventPermission, NotAuthorizedMessageCountsAndANumberGivenAsTextToo)
{
    ProbeRig rig;
    rig.scripts.pushError(QStringLiteral("Not authorized to send Apple events to Finder."));
    checkAuthorizationToSendAEToApp(QStringLiteral("Finder"), QStringLiteral("Quillon"), rig.services);
    ASSERT_EQ(rig.alerts.requests().size(), 2u);
    // No number in the error: the brackets are empty.
    EXPECT_TRUE(rig.alerts.requests()[0].message.endsWith(QStringLiteral("Not authorized to send Apple events to "
                                                                         "Finder. []")));

    ProbeRig text;
    text.scripts.pushError(QStringLiteral("odd"), QStringLiteral("-1743"));
    checkAuthorizationToSendAEToApp(QStringLiteral("Finder"), QStringLiteral("Quillon"), text.services);
    EXPECT_EQ(text.alerts.requests().size(), 2u);
}

TEST(AppleEventPermission, OtherErrorsAndSuccessEndTheProbeQuietly)
{
    ProbeRig rig;
    rig.scripts.pushError(QStringLiteral("Adobe InDesign 2024 got an error: Application isn't running."), -600);
    checkAuthorizationToSendAEToApp(QStringLiteral("Adobe InDesign 2024"), QStringLiteral("Quillon"), rig.services);
    rig.scripts.pushResult(QVariantList{QStringLiteral("[High Quality Print]")});
    checkAuthorizationToSendAEToApp(QStringLiteral("Adobe InDesign 2024"), QStringLiteral("Quillon"), rig.services);
    EXPECT_TRUE(rig.alerts.requests().empty());
    EXPECT_TRUE(rig.tools.calls.empty());
    EXPECT_EQ(rig.environment.terminations, 0);
    EXPECT_EQ(rig.scripts.calls().size(), 2u);
}

TEST(AppleEventPermission, BetaBuildShowsItsBundleAndMayQuitWithoutRelaunching)
{
    ProbeRig rig;
    rig.environment.version = QStringLiteral("2.5b3");
    rig.alerts.pushAnswer(app::kAlertFirstButton);
    rig.alerts.pushAnswer(app::kAlertSecondButton); // "Quit"
    rig.scripts.pushError(QStringLiteral("Not authorized to send Apple events to Adobe InDesign 2024."), -1743);
    checkAEAuthorizationsForApps({QStringLiteral("Adobe InDesign 2024")}, QStringLiteral("Quillon"), rig.services);

    const auto alerts = rig.alerts.requests();
    ASSERT_EQ(alerts.size(), 2u);
    EXPECT_TRUE(alerts[0].message.endsWith(QStringLiteral("[-1743]\n\n/Applications/Quillon.app")));
    EXPECT_EQ(*alerts[1].buttons, (QStringList{QStringLiteral("Relaunch"), QStringLiteral("Quit")}));
    ASSERT_EQ(rig.tools.calls.size(), 1u); // the reset, no relaunch
    EXPECT_EQ(rig.tools.calls[0].path, QStringLiteral("/usr/bin/tccutil"));
    EXPECT_EQ(rig.environment.terminations, 1);
}

TEST(ToolRunner, OutputIsReturnedExceptForZipAndUnzip)
{
    app::SystemToolRunner tools;
    EXPECT_EQ(tools.runTaskWithPath(QStringLiteral("/bin/sh"),
                                    {QStringLiteral("-c"), QStringLiteral("echo out; echo err >&2")}, true),
              std::optional<QString>(QStringLiteral("out\nerr\n")));
    const QString folder = QDir::tempPath();
    EXPECT_EQ(tools.runTaskWithPath(QStringLiteral("/bin/pwd"), {}, folder, true)->trimmed(),
              QDir(folder).canonicalPath());
    // zip's output is only logged: callers judge it by the files it leaves.
    EXPECT_EQ(tools.runTaskWithPath(QStringLiteral("/usr/bin/zip"), {QStringLiteral("-h")}, true),
              std::optional<QString>(QString()));
    EXPECT_EQ(tools.runTaskWithPath(QStringLiteral("/usr/bin/unzip"), {QStringLiteral("-h")}, false), std::nullopt);
    EXPECT_EQ(tools.runTaskWithPath(QStringLiteral("/nonexistent/tool"), {}, true), std::nullopt);
}

TEST(ToolRunner, BoundedToolsAreStoppedWhenTheyRunLongPrintMuchOrGrowAFile)
{
    app::BoundedToolRequest slow;
    slow.program = QStringLiteral("/bin/sleep");
    slow.arguments = {QStringLiteral("30")};
    slow.timeoutMs = 200;
    const app::BoundedToolResult stopped = app::runBoundedTool(slow);
    EXPECT_TRUE(stopped.started);
    EXPECT_FALSE(stopped.exitedNormally);
    EXPECT_TRUE(stopped.stopReason.contains(QStringLiteral("did not finish")));

    app::BoundedToolRequest chatty;
    chatty.program = QStringLiteral("/usr/bin/yes");
    chatty.maxOutputBytes = 100'000;
    const app::BoundedToolResult cut = app::runBoundedTool(chatty);
    EXPECT_EQ(cut.output.size(), 100'000);
    EXPECT_TRUE(cut.stopReason.contains(QStringLiteral("printed more than")));

    // The tool's own children are stopped with it; the writer is bounded anyway (64 MB), so a
    // failure here can never fill the disk.
    QTemporaryDir dir;
    app::BoundedToolRequest filler;
    filler.program = QStringLiteral("/bin/sh");
    filler.arguments = {QStringLiteral("-c"),
                        QStringLiteral("for i in $(seq 1000); do head -c 65536 /dev/zero >> grow.bin; sleep 0.01; "
                                       "done; echo done")};
    filler.workingFolder = dir.path();
    filler.watchedFile = dir.filePath(QStringLiteral("grow.bin"));
    filler.maxWatchedFileBytes = 1'000'000;
    const app::BoundedToolResult grown = app::runBoundedTool(filler);
    EXPECT_TRUE(grown.stopReason.contains(QStringLiteral("wrote more than")));
    EXPECT_FALSE(grown.output.contains("done"));
    const qint64 sizeWhenStopped = QFileInfo(filler.watchedFile).size();
    QThread::msleep(200);
    EXPECT_EQ(QFileInfo(filler.watchedFile).size(), sizeWhenStopped);

    app::BoundedToolRequest echo;
    echo.program = QStringLiteral("/bin/cat");
    echo.standardInput = "y\n";
    const app::BoundedToolResult answered = app::runBoundedTool(echo);
    EXPECT_TRUE(answered.exitedNormally);
    EXPECT_EQ(answered.exitCode, 0);
    EXPECT_EQ(answered.output, QByteArray("y\n"));

    app::BoundedToolRequest missing;
    missing.program = QStringLiteral("/nonexistent/zip");
    const app::BoundedToolResult none = app::runBoundedTool(missing);
    EXPECT_FALSE(none.started);
    EXPECT_TRUE(none.stopReason.contains(QStringLiteral("could not be started")));
}
