#pragma once

#include "app/Result.h"

#include <CLI/CLI.hpp>

#include <QString>

#include <functional>
#include <iosfwd>
#include <string>

namespace quillon::cli {

// Runs `run` with a stream into the file at `path`, written through a temporary file beside it and
// renamed into place when `run` is done; `run` returns the exit status. A file already at `path`
// is replaced (the user named it), but only by a complete output: when the file cannot be made,
// a write fails or the run is interrupted, it is left as it was and the error says why.
struct OutputRun {
    int status = 0;
    app::Status written;
};
OutputRun runIntoFile(const QString& path, const std::function<int(std::ostream& stream)>& run);

// --output FILE and --quiet, the same on every command that prints results.
struct OutputOptions {
    std::string file;
    bool quiet = false;
};
void addOutputOptions(CLI::App& command, OutputOptions& options);

// Where a command's results go while it runs.
struct ResultStream {
    std::ostream& stream; // standard output, the file of --output, or nowhere with --quiet alone
    bool toFile = false;  // the terminal may still be told a summary
    bool quiet = false;   // nothing but errors on standard error
};

// Runs `run` with the stream `options` choose and gives its exit status, which neither option
// changes. A file that cannot be made is an error before `run` starts, and one whose writing
// failed is named; both are status 2, said as "quillon <command>: ...".
int runWithOutput(const OutputOptions& options, const char* command,
                  const std::function<int(const ResultStream& out)>& run);

} // namespace quillon::cli
