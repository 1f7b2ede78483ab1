#pragma once

#include "host/ScriptRunner.h"

namespace quillon::host {

// Runs scripts through the system's script runner executable ("osascript" on macOS): the source
// text goes in on standard input, the value comes back in source form, and an execution or
// syntax error becomes the "error" dictionary. Where the executable is missing every run gives
// an error outcome saying so.
class OsaScriptRunner : public ScriptRunner {
public:
    explicit OsaScriptRunner(QString executable = defaultExecutable());

    static QString defaultExecutable();
    const QString& executable() const { return m_executable; }

protected:
    QVariantMap runSource(const QString& source) override;
    QVariantMap runFile(const QString& path) override;

private:
    QVariantMap run(const QStringList& arguments, const QByteArray& input);

    QString m_executable;
};

// The "error" dictionary of what the runner printed on its error output, such as
// "0:42: execution error: Adobe InDesign 2024 got an error: No documents are open. (-1728)".
// The brief message drops the "<application> got an error: " lead, which goes to the
// application-name key.
QVariantMap scriptErrorFromRunnerOutput(const QString& errorOutput);

} // namespace quillon::host
