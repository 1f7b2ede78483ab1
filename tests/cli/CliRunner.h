#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace quillon::test {

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
    int peakThreads = 0; // the most threads the command had at once, looked at every millisecond
};

// Runs the built `quillon` with the arguments, from the repository root, with a private
// application-support folder; gives up after `timeoutMs`.
CliRun runQuillon(const QStringList& arguments, int timeoutMs = 60000);

// The same with more environment variables ("NAME=value"), such as a private TMPDIR, and
// standard output sent to a file when one is given (then `out` stays empty).
CliRun runQuillon(const QStringList& arguments, const QStringList& environment, int timeoutMs = 60000,
                  const QString& standardOutputFile = {});

// Starts `program` (by default the built `quillon`) from the repository root with the private
// application-support folder and more environment variables ("NAME=value"); the caller waits.
void startQuillon(QProcess& process, const QStringList& arguments, const QStringList& environment,
                  const QString& program = QStringLiteral(QUILLON_CLI_PATH));

// A copy in `dir` of the sample `sample` ("idml/...") with some parts replaced, or added, by the
// given texts (name, text, name, text, ...).
QString rewritten(const QTemporaryDir& dir, const QString& sample, const QStringList& replacements);

// Every file and folder below `folder`, sorted.
QStringList everythingBelow(const QString& folder);

} // namespace quillon::test
