#include "CliRunner.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcessEnvironment>

#include <algorithm>

#include <gtest/gtest.h>

namespace quillon::test {

CliRun runQuillon(const QStringList& arguments, int timeoutMs)
{
    return runQuillon(arguments, {}, timeoutMs);
}

void startQuillon(QProcess& process, const QStringList& arguments, const QStringList& environment,
                  const QString& program)
{
    process.setWorkingDirectory(QStringLiteral(QUILLON_SOURCE_DIR));
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QUILLON_SUPPORT_DIR"), qEnvironmentVariable("QUILLON_SUPPORT_DIR"));
    for (const QString& variable : environment)
        env.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    process.setProcessEnvironment(env);
    process.start(program, arguments);
}

CliRun runQuillon(const QStringList& arguments, const QStringList& environment, int timeoutMs,
                  const QString& standardOutputFile)
{
    QProcess process;
    if (!standardOutputFile.isEmpty())
        process.setStandardOutputFile(standardOutputFile, QIODevice::Append);
    startQuillon(process, arguments, environment);
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

QString rewritten(const QTemporaryDir& dir, const QString& sample, const QStringList& replacements)
{
    const QString path = dir.filePath(QFileInfo(sample).fileName());
    QProcess python;
    python.start(QStringLiteral("python3"),
                 QStringList{QStringLiteral("-c"),
                             QStringLiteral("import sys, zipfile\n"
                                            "new = dict(zip(sys.argv[3::2], sys.argv[4::2]))\n"
                                            "src = zipfile.ZipFile(sys.argv[1])\n"
                                            "out = zipfile.ZipFile(sys.argv[2], 'w', zipfile.ZIP_DEFLATED)\n"
                                            "for item in src.infolist():\n"
                                            "    out.writestr(item.filename, new.pop(item.filename, None) or "
                                            "src.read(item.filename))\n"
                                            "for name, text in new.items():\n"
                                            "    out.writestr(name, text)\n"
                                            "out.close()\n"),
                             samplePath(sample), path} +
                     replacements);
    EXPECT_TRUE(python.waitForFinished());
    EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    return path;
}

QStringList everythingBelow(const QString& folder)
{
    QStringList found;
    QDirIterator it(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        found << it.next();
    found.sort();
    return found;
}

} // namespace quillon::test
