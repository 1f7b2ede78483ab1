#include "cli/Interruption.h"

#include <atomic>
#include <csignal>

namespace quillon::cli {

namespace {

std::atomic<bool> g_requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "the flag is set from a signal handler");

struct sigaction g_previousInt;
struct sigaction g_previousTerm;

void onSignal(int signal)
{
    if (g_requested.exchange(true)) {
        // The second time the user means it.
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
}

} // namespace

Interruption::Interruption()
{
    g_requested = false;
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &g_previousInt);
    sigaction(SIGTERM, &action, &g_previousTerm);
}

Interruption::~Interruption()
{
    sigaction(SIGINT, &g_previousInt, nullptr);
    sigaction(SIGTERM, &g_previousTerm, nullptr);
}

bool Interruption::requested()
{
    return g_requested.load();
}

} // namespace quillon::cli
