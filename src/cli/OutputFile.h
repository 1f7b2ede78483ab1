#pragma once

#include "app/Result.h"

#include <QString>

#include <functional>
#include <iosfwd>

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

} // namespace quillon::cli
