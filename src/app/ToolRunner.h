#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace quillon::app {

// Runs command-line tools ("/usr/bin/zip", "/usr/bin/tccutil", "/bin/sh"). An interface so that
// tests record the calls whose effect reaches beyond the process (resetting permissions,
// relaunching) instead of making them.
class ToolRunner {
public:
    virtual ~ToolRunner() = default;

    // Runs the tool with its arguments in `currDir` (the current folder when empty).
    // With `returnResult` the answer is the tool's standard output and error together, except
    // for "/unzip" and "/zip", whose output is only logged (the answer is then ""): callers judge
    // those by the files they find afterwards. Without `returnResult` the answer is nothing;
    // "/unzip" is waited for, any other tool is started and left running. A tool that cannot be
    // started answers nothing. The exit status is not looked at.
    virtual std::optional<QString> runTaskWithPath(const QString& path, const QStringList& arguments,
                                                   const QString& currDir, bool returnResult) = 0;

    std::optional<QString> runTaskWithPath(const QString& path, const QStringList& arguments, bool returnResult)
    {
        return runTaskWithPath(path, arguments, QString(), returnResult);
    }
};

// Runs the tools as processes of this system.
class SystemToolRunner : public ToolRunner {
public:
    using ToolRunner::runTaskWithPath;
    std::optional<QString> runTaskWithPath(const QString& path, const QStringList& arguments, const QString& currDir,
                                           bool returnResult) override;
};

class CancelFlag;

// A tool run that must not be trusted to end by itself or to stay small: it gets its standard
// input up front and is stopped, with every process it started, when it runs too long, prints too
// much, lets a file it writes grow too large or is cancelled (within a tenth of a second). It also
// dies with the thread that started it, so it never outlives this program.
struct BoundedToolRequest {
    QString program;
    QStringList arguments;
    QString workingFolder;
    QByteArray standardInput; // written at start, then the input is closed
    int timeoutMs = 60'000;
    qint64 maxOutputBytes = 4 << 20; // standard output and error together
    QString watchedFile;             // a file the tool writes, or empty
    qint64 maxWatchedFileBytes = 0;  // its size limit (0: not watched)
    const CancelFlag* cancel = nullptr;
};

struct BoundedToolResult {
    bool started = false;
    bool exitedNormally = false; // ended by itself, not stopped or crashed
    int exitCode = -1;
    QByteArray output;  // standard output and error together, at most maxOutputBytes
    QString stopReason; // why it was stopped or could not start, or empty
};

BoundedToolResult runBoundedTool(const BoundedToolRequest& request);

} // namespace quillon::app
