#include "core/report/HandlerGuard.h"

#include <algorithm>
#include <new>

#include "core/text/ErrorText.h"

namespace sonavex {

RuntimeError HandlerGuard::AsRuntimeError(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const RuntimeError& runtimeError) {
        return runtimeError;
    } catch (const std::bad_alloc&) {
        return RuntimeError(error_number::kOutOfMemory);
    } catch (const std::exception& other) {
        return {error_number::kInvalidCall, other.what()};
    } catch (...) {
        return RuntimeError(error_number::kInvalidCall);
    }
}

void HandlerGuard::Show(const RuntimeError& error) {
    log_.WriteLine(ErrorLine(error));
    struct Open {
        HandlerGuard& guard;
        explicit Open(HandlerGuard& owner) : guard(owner) { Set(true); }
        ~Open() { Set(false); }
        Open(const Open&) = delete;
        Open& operator=(const Open&) = delete;
        void Set(bool open) const {
            guard.open_ = open;
            if (guard.OnMessageOpen) guard.OnMessageOpen(open);
        }
    };
    const Open open(*this);
    dialogs_.Message(ErrorText(error), MessageIcon::kCritical);
}

void HandlerGuard::ShowOnce(const RuntimeError& error) {
    const std::string text = ErrorText(error);
    const bool shown =
        std::find(shownStreamErrors_.begin(), shownStreamErrors_.end(), text) != shownStreamErrors_.end();
    if (open_ || shown || ending_.Requested()) return;
    shownStreamErrors_.push_back(text);
    Show(error);
}

// The message about an error may itself be ended by a request.
void HandlerGuard::Guarded(const std::function<void()>& action,
                           void (HandlerGuard::*show)(const RuntimeError&)) {
    try {
        try {
            action();
        } catch (const EndProgram&) {
            throw;
        } catch (...) {
            (this->*show)(AsRuntimeError(std::current_exception()));
        }
    } catch (const EndProgram& end) {
        ending_.Request(end);
        if (OnEnd) OnEnd(end);
    }
}

void HandlerGuard::Run(const std::function<void()>& handler) {
    if (!ending_.Requested()) Guarded(handler, &HandlerGuard::Show);
}

void HandlerGuard::StreamError(const std::exception_ptr& error) {
    Guarded([&] { std::rethrow_exception(error); }, &HandlerGuard::ShowOnce);
}

void HandlerGuard::Fatal(const std::exception_ptr& error) {
    try {
        Show(AsRuntimeError(error));
    } catch (const EndProgram&) {
        // The program is ending already.
    }
}

}  // namespace sonavex
