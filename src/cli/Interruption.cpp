#include "cli/Interruption.h"

#include "app/RegularFile.h"
#include "cli/Commands.h"

#include <QFile>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillon::cli {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

std::atomic<int> g_signal{0};   // the first signal received
std::atomic<int> g_received{0}; // how many arrived
static_assert(std::atomic<int>::is_always_lock_free, "set from a signal handler");

struct sigaction g_previous[std::size(kSignals)];
// A file-size limit (ulimit -f) would kill the process in the middle of a write, leaving its
// temporary folders and a half-written file; ignored, the write fails with "File too large" and
// the command reports it like a full disk.
struct sigaction g_previousFileSizeAction;

void onSignal(int signal)
{
    int none = 0;
    g_signal.compare_exchange_strong(none, signal);
    ++g_received;
}

// The folders to remove on a forced end, and the watch that forces it.
struct Watch {
    std::mutex mutex;
    std::condition_variable finished;
    QStringList folders;
    std::function<void()> cancel; // run at the first signal
    bool done = false;
    std::thread thread;
};

Watch* g_watch = nullptr;

int statusForSignal(int signal)
{
    if (signal == 0)
        return 0;
    if (signal == SIGPIPE)
        return kExitFailure;
    return 128 + signal;
}

// Other threads are stopped where they are before the folders go, so that none of them makes a
// file there again; they may hold any lock (the allocator's too), so from then on only system
// calls are used.
std::atomic<int> g_frozen{0};

void freezeThread(int)
{
    ++g_frozen;
    for (;;)
        ::pause();
}

int freezeSignal()
{
    return SIGRTMIN + 2;
}

void freezeOtherThreads()
{
    struct sigaction action = {};
    action.sa_handler = freezeThread;
    sigemptyset(&action.sa_mask);
    sigaction(freezeSignal(), &action, nullptr);
    const pid_t self = static_cast<pid_t>(::syscall(SYS_gettid));
    int signalled = 0;
    if (DIR* tasks = ::opendir("/proc/self/task")) {
        while (const dirent* entry = ::readdir(tasks)) {
            const long tid = std::strtol(entry->d_name, nullptr, 10);
            if (tid > 0 && tid != self && ::syscall(SYS_tgkill, ::getpid(), tid, freezeSignal()) == 0)
                ++signalled;
        }
        ::closedir(tasks);
    }
    for (int waited = 0; g_frozen.load() < signalled && waited < 200; ++waited)
        ::usleep(1000);
}

// Removes `name` in the folder `parent` and everything in it, with system calls only.
void removeTree(int parent, const char* name)
{
    if (::unlinkat(parent, name, 0) == 0 || errno != EISDIR)
        return;
    // A folder read while its entries go may skip some: read it again, a few times at most.
    for (int pass = 0; pass < 3 && ::unlinkat(parent, name, AT_REMOVEDIR) != 0 && errno == ENOTEMPTY; ++pass) {
        const int folder = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (folder < 0)
            return;
        alignas(8) char buffer[4096];
        for (long size; (size = ::syscall(SYS_getdents64, folder, buffer, sizeof buffer)) > 0;) {
            for (long offset = 0; offset < size;) {
                const auto* entry = reinterpret_cast<const dirent64*>(buffer + offset);
                offset += entry->d_reclen;
                if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
                    removeTree(folder, entry->d_name);
            }
        }
        ::close(folder);
    }
}

[[noreturn]] void endNow(Watch& watch)
{
    std::vector<std::string> folders;
    {
        std::lock_guard lock(watch.mutex);
        for (const QString& folder : std::as_const(watch.folders))
            folders.push_back(app::localBytesOfPath(folder).toStdString());
    }
    freezeOtherThreads();
    for (const std::string& folder : folders)
        removeTree(AT_FDCWD, folder.c_str());
    const std::string_view message =
        g_signal.load() == SIGPIPE ? "quillon: cannot write standard output: Broken pipe\n" : "quillon: stopped\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, message.data(), message.size());
    ::_exit(statusForSignal(g_signal.load()));
}

void watchForSignals(Watch& watch)
{
    using namespace std::chrono;
    std::unique_lock lock(watch.mutex);
    while (!watch.done && g_signal.load() == 0)
        watch.finished.wait_for(lock, milliseconds(20));
    if (watch.done)
        return;
    // The command has its grace to stop on its own; a second signal cuts it short. Work that
    // starts meanwhile is cancelled too.
    const auto deadline = steady_clock::now() + milliseconds(Interruption::kGraceMilliseconds);
    while (!watch.done && g_received.load() < 2 && steady_clock::now() < deadline) {
        if (watch.cancel)
            watch.cancel();
        watch.finished.wait_for(lock, milliseconds(10));
    }
    if (watch.done)
        return;
    lock.unlock();
    endNow(watch);
}

} // namespace

Interruption::Interruption()
{
    g_signal = 0;
    g_received = 0;
    g_watch = new Watch;
    g_watch->thread = std::thread(watchForSignals, std::ref(*g_watch));
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < std::size(kSignals); ++i)
        sigaction(kSignals[i], &action, &g_previous[i]);
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    sigaction(SIGXFSZ, &ignore, &g_previousFileSizeAction);
}

Interruption::~Interruption()
{
    {
        std::lock_guard lock(g_watch->mutex);
        g_watch->done = true;
    }
    g_watch->finished.notify_all();
    g_watch->thread.join();
    for (size_t i = 0; i < std::size(kSignals); ++i)
        sigaction(kSignals[i], &g_previous[i], nullptr);
    sigaction(SIGXFSZ, &g_previousFileSizeAction, nullptr);
    delete std::exchange(g_watch, nullptr);
}

bool Interruption::requested()
{
    return g_signal.load() != 0;
}

int Interruption::exitStatus()
{
    return statusForSignal(g_signal.load());
}

void Interruption::removeOnForcedExit(const QString& folder)
{
    if (!g_watch)
        return;
    std::lock_guard lock(g_watch->mutex);
    g_watch->folders.append(folder);
}

Interruption::CancelOnRequest::CancelOnRequest(std::function<void()> cancel)
{
    if (!g_watch)
        return;
    std::lock_guard lock(g_watch->mutex);
    g_watch->cancel = std::move(cancel);
}

Interruption::CancelOnRequest::~CancelOnRequest()
{
    if (!g_watch)
        return;
    std::lock_guard lock(g_watch->mutex);
    g_watch->cancel = nullptr;
}

void Interruption::forget(const QString& folder)
{
    if (!g_watch)
        return;
    std::lock_guard lock(g_watch->mutex);
    g_watch->folders.removeOne(folder);
}

} // namespace quillon::cli
