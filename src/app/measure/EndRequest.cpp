#include "app/measure/EndRequest.h"

#include <array>
#include <csignal>

namespace sonavex::measure {
namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};

// NOLINTNEXTLINE(readability-identifier-naming)
volatile std::sig_atomic_t g_endRequested = 0;
// NOLINTNEXTLINE(readability-identifier-naming)
std::array<struct sigaction, kSignals.size()> g_formerActions;

void NoteEndRequest(int /*signal*/) {
    g_endRequested = 1;
}

}  // namespace

EndRequest::EndRequest() {
    g_endRequested = 0;
    struct sigaction action {};
    action.sa_handler = NoteEndRequest;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], nullptr, &g_formerActions[i]);
        if (g_formerActions[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
    }
}

EndRequest::~EndRequest() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &g_formerActions[i], nullptr);
}

bool EndRequest::Noted() const noexcept {
    return g_endRequested != 0;
}

}  // namespace sonavex::measure
