#pragma once

namespace quillon::cli {

// Ctrl-C (and a request to terminate) while a command runs: the first one only sets a flag that
// the command checks, so that it can cancel cleanly and remove its temporary files; a second
// one ends the process at once.
class Interruption {
public:
    // Installs the handlers; the previous ones come back when the object goes.
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    static bool requested();
};

// The exit status of a command stopped by Ctrl-C (128 + SIGINT).
inline constexpr int kExitInterrupted = 130;

} // namespace quillon::cli
