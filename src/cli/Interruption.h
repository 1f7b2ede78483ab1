#pragma once

#include <QString>

#include <functional>

namespace quillon::cli {

// The signals that end a command: SIGINT (Ctrl-C), SIGTERM, SIGHUP (the terminal went away) and
// SIGPIPE (the reader of the output went away). The first one only sets a flag that the command
// checks, so that it can cancel and remove its temporary files itself. When it has not returned
// within kGraceMilliseconds (or at a second signal), the folders registered here are removed and
// the process ends with the signal's exit status.
class Interruption {
public:
    // Installs the handlers and the watch; the previous handlers come back when the object goes.
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    static bool requested();
    // 130 for SIGINT, 2 for SIGPIPE (an output was lost), 128 + the signal's number otherwise;
    // 0 when no signal came.
    static int exitStatus();

    // A temporary folder to remove should the process have to end before its owner removes it.
    static void removeOnForcedExit(const QString& folder);
    static void forget(const QString& folder);

    static constexpr int kGraceMilliseconds = 400;

    // While one lives, `cancel` runs on the watch's own thread from the first signal on, every
    // few milliseconds until the command returns, so that work the command waits on (and work
    // that starts meanwhile) is cancelled without the command polling for it.
    class CancelOnRequest {
    public:
        explicit CancelOnRequest(std::function<void()> cancel);
        ~CancelOnRequest();
        CancelOnRequest(const CancelOnRequest&) = delete;
        CancelOnRequest& operator=(const CancelOnRequest&) = delete;
    };
};

// The exit status of a command stopped by Ctrl-C (128 + SIGINT).
inline constexpr int kExitInterrupted = 130;

} // namespace quillon::cli
