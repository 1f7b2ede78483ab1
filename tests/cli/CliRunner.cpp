#include "CliRunner.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>

#include <algorithm>

namespace quillon::test {

CliRun runQuillon(const QStringList& arguments, int timeoutMs)
{
    return runQuillon(arguments, {}, timeoutMs);
}

CliRun runQuillon(const QStringList& arguments, const QStringList& environment, int timeoutMs,
                  const QString& standardOutputFile)
{
    QProcess process;
    process.setWorkingDirectory(QStringLiteral(QUILLON_SOURCE_DIR));
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QUILLON_SUPPORT_DIR"), qEnvironmentVariable("QUILLON_SUPPORT_DIR"));
    for (const QString& variable : environment)
        env.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    process.setProcessEnvironment(env);
    if (!standardOutputFile.isEmpty())
        process.setStandardOutputFile(standardOutputFile, QIODevice::Append);
    process.start(QStringLiteral(QUILLON_CLI_PATH), arguments);
    CliRun run;
    const QString threads = QStringLiteral("/proc/%1/task").arg(process.processId());
    QElapsedTimer clock;
    clock.start();
    while (!process.waitForFinished(1)) {
        if (process.state() == QProcess::NotRunning || clock.elapsed() > timeoutMs) {
            process.kill();
            process.waitForFinished();
            return run;
        }
        run.peakThreads =
            std::max(run.peakThreads, int(QDir(threads).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size()));
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

} // namespace quillon::test
