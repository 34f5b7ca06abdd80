#include "platform/qt/QtEventLoop.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>
#include <QTimerEvent>
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <map>
#include <system_error>
#include <utility>

namespace sonavex {

// An event descriptor, readable while signals wait for delivery.
class QtEventLoop::WakeDescriptor {
public:
    WakeDescriptor() : number_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (number_ < 0) throw std::system_error(errno, std::generic_category(), "event descriptor");
    }
    ~WakeDescriptor() { close(number_); }
    WakeDescriptor(const WakeDescriptor&) = delete;
    WakeDescriptor& operator=(const WakeDescriptor&) = delete;

    int Number() const noexcept { return number_; }
    void Set() const noexcept {
        const std::uint64_t one = 1;
        // Fails only when the counter is at its maximum; the descriptor is readable then.
        [[maybe_unused]] const ssize_t written = write(number_, &one, sizeof one);
    }
    void Reset() const noexcept {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t cleared = read(number_, &count, sizeof count);
    }

private:
    int number_;
};

class QtEventLoop::Timers : public QObject {
public:
    explicit Timers(QtEventLoop& loop) noexcept : loop_(loop) {}

    TimerId Start(std::chrono::milliseconds interval, std::function<void()> handler) {
        constexpr std::chrono::milliseconds kLongest{std::numeric_limits<int>::max()};
        const int number =
            startTimer(std::clamp(interval, std::chrono::milliseconds::zero(), kLongest), Qt::PreciseTimer);
        timers_[++last_] = Timer{number, std::move(handler)};
        return last_;
    }

    void Stop(TimerId id) {
        const auto found = timers_.find(id);
        if (found == timers_.end()) return;
        killTimer(found->second.number);
        timers_.erase(found);
    }

protected:
    void timerEvent(QTimerEvent* event) override {
        const auto found = std::find_if(timers_.begin(), timers_.end(), [&](const auto& entry) {
            return entry.second.number == event->timerId();
        });
        // A handler that calls Yield is not entered again.
        if (found == timers_.end() || found->second.running) return;
        found->second.running = true;
        // It may stop its own timer.
        const TimerId id = found->first;
        const auto handler = found->second.handler;
        loop_.Run(handler);
        const auto left = timers_.find(id);
        if (left != timers_.end()) left->second.running = false;
    }

private:
    struct Timer {
        int number = 0;  // Qt's identifier, which Qt reuses after the timer was stopped
        std::function<void()> handler;
        bool running = false;  // its handler is being called
    };

    QtEventLoop& loop_;
    std::map<TimerId, Timer> timers_;
    TimerId last_ = 0;
};

QtEventLoop::QtEventLoop(OnError onError)
    : onError_(std::move(onError)),
      wake_(std::make_unique<WakeDescriptor>()),
      queue_([this] { wake_->Set(); }),
      notifier_(wake_->Number(), QSocketNotifier::Read),
      timers_(std::make_unique<Timers>(*this)) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { OnWake(); });
}

QtEventLoop::~QtEventLoop() = default;

std::unique_ptr<Signal> QtEventLoop::CreateSignal(std::function<void()> handler) {
    return queue_.Create(std::move(handler));
}

EventLoop::TimerId QtEventLoop::StartTimer(std::chrono::milliseconds interval,
                                           std::function<void()> handler) {
    return timers_->Start(interval, std::move(handler));
}

void QtEventLoop::StopTimer(TimerId id) {
    timers_->Stop(id);
}

std::chrono::nanoseconds QtEventLoop::Now() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

void QtEventLoop::Deliver() {
    wake_->Reset();
    queue_.Deliver([this](const std::function<void()>& handler) { Run(handler); });
}

void QtEventLoop::OnWake() {
    // A Yield lets the toolkit deliver its pending events, and signals raised meanwhile wait. In the loop
    // of a dialog that one of these events opens, they are delivered. The descriptor stays readable and
    // wakes the next pass.
    if (QThread::currentThread()->loopLevel() == yieldingLevel_) return;
    Deliver();
}

void QtEventLoop::Yield() {
    Yield(QEventLoop::AllEvents);
}

void QtEventLoop::YieldWithoutInput() {
    Yield(QEventLoop::ExcludeUserInputEvents);
    // Qt delivers the input that this has left in its queue only after another wake-up.
    QThread::currentThread()->eventDispatcher()->wakeUp();
}

void QtEventLoop::Yield(QEventLoop::ProcessEventsFlags events) {
    Deliver();
    struct Yielding {
        int& level;
        int outer;
        ~Yielding() { level = outer; }
    };
    const Yielding yielding{yieldingLevel_, yieldingLevel_};
    yieldingLevel_ = QThread::currentThread()->loopLevel();
    QCoreApplication::processEvents(events);
}

void QtEventLoop::Run(const std::function<void()>& handler) noexcept {
    std::exception_ptr error;
    try {
        handler();
    } catch (...) {
        error = std::current_exception();
    }
    if (error && onError_) onError_(error);
}

}  // namespace sonavex
