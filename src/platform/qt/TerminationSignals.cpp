#include "platform/qt/TerminationSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace sonavex {
namespace {

constexpr std::array<int, 3> kSignals{SIGTERM, SIGINT, SIGHUP};

std::array<int, 2> g_pipe{-1, -1};  // NOLINT(readability-identifier-naming): a signal handler has no object
std::array<struct sigaction, kSignals.size()> g_before;  // NOLINT(readability-identifier-naming)

// Writes one byte into the pipe: a signal handler may do little more.
void OnSignal(int) {
    const int error = errno;
    const char byte = 0;
    static_cast<void>(!write(g_pipe[1], &byte, 1));
    errno = error;
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> requested) {
    if (pipe2(g_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    notifier_ = std::make_unique<QSocketNotifier>(g_pipe[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [handler = std::move(requested)] {
                         std::array<char, 16> bytes{};
                         while (read(g_pipe[0], bytes.data(), bytes.size()) > 0) {
                         }
                         handler();
                     });
    struct sigaction action {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &action, &g_before[i]);
}

TerminationSignals::~TerminationSignals() {
    if (!notifier_) return;
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &g_before[i], nullptr);
    notifier_.reset();
    for (int& end : g_pipe) close(std::exchange(end, -1));
}

}  // namespace sonavex
