#include "CliRunner.h"

#include <QProcess>
#include <QProcessEnvironment>

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
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

bool writeClimbingIdml(const QString& path)
{
    QProcess python;
    python.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"),
                  QStringLiteral("import sys, zipfile\n"
                                 "z = zipfile.ZipFile(sys.argv[1], 'w')\n"
                                 "z.writestr('mimetype', 'application/vnd.adobe.indesign-idml-package')\n"
                                 "z.writestr('designmap.xml', '<Document DOMVersion=\"20.0\"/>')\n"
                                 "z.writestr('../../../../escaped.txt', 'outside')\n"
                                 "z.close()\n"),
                  path});
    return python.waitForFinished() && python.exitCode() == 0;
}

} // namespace quillon::test
