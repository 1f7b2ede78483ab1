#pragma once

#include <QByteArray>
#include <QStringList>

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

} // namespace quillon::test
