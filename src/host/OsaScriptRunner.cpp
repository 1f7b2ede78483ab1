#include "host/OsaScriptRunner.h"

#include "app/Log.h"
#include "host/AppleScriptValue.h"

#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

namespace quillon::host {

OsaScriptRunner::OsaScriptRunner(QString executable) : m_executable(std::move(executable)) {}

QString OsaScriptRunner::defaultExecutable()
{
    return QStringLiteral("/usr/bin/osascript");
}

QVariantMap OsaScriptRunner::runSource(const QString& source)
{
    return run({QStringLiteral("-s"), QStringLiteral("s")}, source.toUtf8());
}

QVariantMap OsaScriptRunner::runFile(const QString& path)
{
    const QFileInfo file(path);
    if (!file.isFile() || !file.isReadable()) {
        const QString message = QStringLiteral("The compiled script \"%1\" cannot be read.").arg(path);
        return scriptErrorOutcome(message, message, -43);
    }
    return run({QStringLiteral("-s"), QStringLiteral("s"), path}, {});
}

QVariantMap OsaScriptRunner::run(const QStringList& arguments, const QByteArray& input)
{
    if (!QFileInfo(m_executable).isExecutable()) {
        const QString message =
            QStringLiteral("Scripts cannot run on this system: the script runner \"%1\" was not found. Talking to "
                           "InDesign needs macOS with InDesign installed; elsewhere, give Quillon the document's "
                           "IDML export.")
                .arg(m_executable);
        app::logFailure(QStringLiteral("run script: no %1").arg(m_executable));
        return scriptErrorOutcome(message, message);
    }
    QProcess process;
    process.start(m_executable, arguments);
    if (!process.waitForStarted(-1)) {
        const QString message = QStringLiteral("The script runner \"%1\" could not be started: %2")
                                    .arg(m_executable, process.errorString());
        return scriptErrorOutcome(message, message);
    }
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(-1);
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    const QString errors = QString::fromUtf8(process.readAllStandardError());
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        if (errors.trimmed().isEmpty()) {
            const QString message = QStringLiteral("The script runner \"%1\" ended without an answer (status %2).")
                                        .arg(m_executable)
                                        .arg(process.exitCode());
            return scriptErrorOutcome(message, message);
        }
        return {{kScriptErrorKey, scriptErrorFromRunnerOutput(errors)}};
    }
    QString value = output;
    if (value.endsWith(u'\n'))
        value.chop(1);
    return scriptSuccessOutcome(parseAppleScriptValue(value));
}

QVariantMap scriptErrorFromRunnerOutput(const QString& errorOutput)
{
    const QString text = errorOutput.trimmed();
    static const QRegularExpression shape(
        QStringLiteral("(?:^|:)\\s*(?:-?\\d+:-?\\d+:\\s*)?(?:execution|syntax) error:\\s*(.*?)\\s*\\((-?\\d+)\\)\\s*$"),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = shape.match(text);
    if (!match.hasMatch())
        return {{kScriptErrorMessageKey, text}, {kScriptErrorBriefMessageKey, text}};

    const QString message = match.captured(1);
    QVariantMap error{{kScriptErrorMessageKey, message}, {kScriptErrorNumberKey, match.captured(2).toLongLong()}};
    static const QRegularExpression lead(QStringLiteral("^(.+?) got an error: (.*)$"),
                                         QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch leadMatch = lead.match(message);
    if (leadMatch.hasMatch()) {
        error.insert(kScriptErrorAppNameKey, leadMatch.captured(1));
        error.insert(kScriptErrorBriefMessageKey, leadMatch.captured(2));
    } else {
        error.insert(kScriptErrorBriefMessageKey, message);
    }
    return error;
}

} // namespace quillon::host
