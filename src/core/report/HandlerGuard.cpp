#include "core/report/HandlerGuard.h"

#include <algorithm>
#include <new>

#include "core/support/ScopedFlag.h"
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
    if (OnMessageOpen) OnMessageOpen(true);
    {
        const ScopedFlag open(open_);
        dialogs_.Message(ErrorText(error), MessageIcon::kCritical);
    }
    if (OnMessageOpen) OnMessageOpen(false);
}

void HandlerGuard::Run(const std::function<void()>& handler) {
    try {
        handler();
    } catch (const EndProgram& end) {
        if (OnEnd) OnEnd(end);
    } catch (...) {
        Show(AsRuntimeError(std::current_exception()));
    }
}

void HandlerGuard::StreamError(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const EndProgram& end) {
        if (OnEnd) OnEnd(end);
        return;
    } catch (...) {
    }
    const RuntimeError runtimeError = AsRuntimeError(error);
    const std::string text = ErrorText(runtimeError);
    const bool shown =
        std::find(shownStreamErrors_.begin(), shownStreamErrors_.end(), text) != shownStreamErrors_.end();
    if (open_ || shown) return;
    shownStreamErrors_.push_back(text);
    Show(runtimeError);
}

}  // namespace sonavex
