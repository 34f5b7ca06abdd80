#include "core/support/Ending.h"

namespace sonavex {

void Ending::Request(const EndProgram& end) {
    if (!requested_) requested_ = end;
    requested_->bySignal = requested_->bySignal || end.bySignal;
    for (auto call = calls_.rbegin(); call != calls_.rend(); ++call) {
        if ((*call)->closed) continue;
        (*call)->closed = true;
        (*call)->close();
    }
}

void Ending::ThrowIfRequested() const {
    if (requested_) throw EndProgram(*requested_);
}

void Ending::Wait(const Action& wait, const Action& close) {
    ThrowIfRequested();
    Run(wait, close);
}

void Ending::WaitForMessage(const Action& wait, const Action& close) {
    if (requested_ && requested_->bySignal) ThrowIfRequested();
    Run(wait, close);
}

void Ending::Run(const Action& wait, const Action& close) {
    Call call{close};
    calls_.push_back(&call);
    struct Leave {
        std::vector<Call*>& calls;
        ~Leave() { calls.pop_back(); }
    };
    {
        const Leave leave{calls_};
        wait();
    }
    if (call.closed) ThrowIfRequested();
}

}  // namespace sonavex
