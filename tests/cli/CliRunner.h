#pragma once

#include <QByteArray>
#include <QStringList>

namespace quillon::test {

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

// Runs the built `quillon` with the arguments, from the repository root, with a private
// application-support folder; gives up after `timeoutMs`.
CliRun runQuillon(const QStringList& arguments, int timeoutMs = 60000);

// The same with more environment variables ("NAME=value"), such as a private TMPDIR, and
// standard output sent to a file when one is given (then `out` stays empty).
CliRun runQuillon(const QStringList& arguments, const QStringList& environment, int timeoutMs = 60000,
                  const QString& standardOutputFile = {});

// Writes an IDML archive with an entry whose path climbs out of its folder
// ("../../../../escaped.txt"); false when it could not be made.
bool writeClimbingIdml(const QString& path);

} // namespace quillon::test
