#include "app/ToolRunner.h"

#include "app/Log.h"
#include "app/Progress.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>

#ifdef Q_OS_UNIX
#include <csignal>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

namespace quillon::app {

namespace {

bool isUnzip(const QString& path)
{
    return path.contains(QLatin1String("/unzip"));
}

bool isZip(const QString& path)
{
    return path.endsWith(QLatin1String("/zip"));
}

} // namespace

std::optional<QString> SystemToolRunner::runTaskWithPath(const QString& path, const QStringList& arguments,
                                                         const QString& currDir, bool returnResult)
{
    logLine(QStringLiteral("> runTaskWithPath:%1 arguments:%2").arg(path, arguments.join(u' ')));
    if (!returnResult && !isUnzip(path)) {
        if (!QProcess::startDetached(path, arguments, currDir))
            logFailure(QStringLiteral("start %1").arg(path));
        return std::nullopt;
    }

    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    if (!currDir.isEmpty())
        process.setWorkingDirectory(currDir);
    process.start(path, arguments);
    if (!process.waitForStarted(-1)) {
        logFailure(QStringLiteral("start %1: %2").arg(path, process.errorString()));
        return std::nullopt;
    }
    process.waitForFinished(-1);
    const QString output = QString::fromUtf8(process.readAll());
    if (!returnResult)
        return std::nullopt;
    if (isUnzip(path) || isZip(path)) {
        logLine(QStringLiteral("availData: %1").arg(output));
        return QString();
    }
    logLine(QStringLiteral("result: %1").arg(output));
    return output;
}

BoundedToolResult runBoundedTool(const BoundedToolRequest& request)
{
    BoundedToolResult result;
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
#ifdef Q_OS_UNIX
    // A group of its own, so stopping the tool also stops whatever it started; killed when this
    // program dies, even by a signal it cannot catch.
    process.setChildProcessModifier([] {
        ::setpgid(0, 0);
#ifdef Q_OS_LINUX
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    });
#endif
    if (!request.workingFolder.isEmpty())
        process.setWorkingDirectory(request.workingFolder);
    process.start(request.program, request.arguments);
    if (!process.waitForStarted(-1)) {
        result.stopReason = QStringLiteral("%1 could not be started: %2").arg(request.program, process.errorString());
        return result;
    }
    result.started = true;
    if (!request.standardInput.isEmpty())
        process.write(request.standardInput);
    process.closeWriteChannel();

    auto stop = [&](const QString& reason) {
        result.stopReason = reason;
#ifdef Q_OS_UNIX
        if (const qint64 pid = process.processId(); pid > 0)
            ::kill(-static_cast<pid_t>(pid), SIGKILL);
#endif
        process.kill();
        process.waitForFinished(5'000);
    };
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        const bool ended = process.waitForFinished(50);
        result.output += process.readAll();
        if (result.output.size() > request.maxOutputBytes) {
            result.output.truncate(request.maxOutputBytes);
            if (!ended)
                stop(QStringLiteral("%1 printed more than %2 bytes and was stopped")
                         .arg(request.program)
                         .arg(request.maxOutputBytes));
            break;
        }
        if (ended)
            break;
        if (request.cancel && request.cancel->isCancelled()) {
            stop(QStringLiteral("%1 was stopped: the work was cancelled").arg(request.program));
            break;
        }
        if (request.maxWatchedFileBytes > 0 && QFileInfo(request.watchedFile).size() > request.maxWatchedFileBytes) {
            stop(QStringLiteral("%1 wrote more than %2 bytes to %3 and was stopped")
                     .arg(request.program)
                     .arg(request.maxWatchedFileBytes)
                     .arg(request.watchedFile));
            break;
        }
        if (clock.elapsed() > request.timeoutMs) {
            stop(QStringLiteral("%1 did not finish within %2 seconds and was stopped")
                     .arg(request.program)
                     .arg(request.timeoutMs / 1000.0));
            break;
        }
    }
    if (result.stopReason.isEmpty()) {
        result.exitedNormally = process.exitStatus() == QProcess::NormalExit;
        result.exitCode = process.exitCode();
    }
    return result;
}

} // namespace quillon::app
