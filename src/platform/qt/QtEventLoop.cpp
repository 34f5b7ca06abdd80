#include "platform/qt/QtEventLoop.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QThread>
#include <QTimerEvent>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

namespace sonavex {

// One bell. It stands in the queues by its own links, so that neither ringing nor delivering needs memory.
struct QtEventLoop::Bell {
    std::function<void()> handler;
    std::atomic<bool> rung{false};  // and not delivered yet
    bool destroyed = false;         // user-interface thread only
    // While rung; the thread that rings hands them over to the user-interface thread.
    std::shared_ptr<Bell> self;
    Bell* link = nullptr;
    std::uint64_t ticket = 0;
};

// The rings that the user-interface thread has not seen: a stack, the last ring on top.
class QtEventLoop::Belfry {
public:
    Belfry() : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (wake_ < 0) throw std::system_error(errno, std::generic_category(), "event descriptor");
    }
    ~Belfry() { close(wake_); }
    Belfry(const Belfry&) = delete;
    Belfry& operator=(const Belfry&) = delete;

    int WakeDescriptor() const noexcept { return wake_; }

    // Any thread.
    bool Ring(const std::shared_ptr<Bell>& bell) noexcept {
        if (bell->rung.exchange(true)) return false;
        bell->self = bell;
        Bell* top = top_.load();
        do {
            bell->link = top;
        } while (!top_.compare_exchange_weak(top, bell.get()));
        // Rings on top of others need no wake of their own.
        if (top == nullptr) Wake();
        return true;
    }

    // The oldest ring, linked to the younger ones.
    Bell* TakeAll() noexcept {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t cleared = read(wake_, &count, sizeof count);
        Bell* oldest = nullptr;
        for (Bell* bell = top_.exchange(nullptr); bell != nullptr;)
            bell = std::exchange(bell->link, std::exchange(oldest, bell));
        return oldest;
    }

private:
    void Wake() const noexcept {
        const std::uint64_t one = 1;
        // Fails only when the counter is full, and then it wakes anyway.
        [[maybe_unused]] const ssize_t written = write(wake_, &one, sizeof one);
    }

    std::atomic<Bell*> top_{nullptr};
    int wake_;
};

class QtEventLoop::QueuedSignal : public Signal {
public:
    QueuedSignal(std::shared_ptr<Belfry> belfry, std::function<void()> handler)
        : belfry_(std::move(belfry)), bell_(std::make_shared<Bell>()) {
        bell_->handler = std::move(handler);
    }
    ~QueuedSignal() override { bell_->destroyed = true; }
    QueuedSignal(const QueuedSignal&) = delete;
    QueuedSignal& operator=(const QueuedSignal&) = delete;

    bool Raise() noexcept override { return belfry_->Ring(bell_); }

private:
    std::shared_ptr<Belfry> belfry_;
    std::shared_ptr<Bell> bell_;
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
        // A handler that yields does not meet itself.
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
        int number = 0;  // the toolkit's, used again after the timer was stopped
        std::function<void()> handler;
        bool running = false;  // its handler is being called
    };

    QtEventLoop& loop_;
    std::map<TimerId, Timer> timers_;
    TimerId last_ = 0;
};

QtEventLoop::QtEventLoop(OnError onError)
    : onError_(std::move(onError)),
      belfry_(std::make_shared<Belfry>()),
      wake_(belfry_->WakeDescriptor(), QSocketNotifier::Read),
      timers_(std::make_unique<Timers>(*this)) {
    QObject::connect(&wake_, &QSocketNotifier::activated, &wake_, [this] { OnWake(); });
}

QtEventLoop::~QtEventLoop() {
    Collect();
    while (PopUpTo(lastTicket_)) {
    }
}

std::unique_ptr<Signal> QtEventLoop::CreateSignal(std::function<void()> handler) {
    return std::make_unique<QueuedSignal>(belfry_, std::move(handler));
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

void QtEventLoop::Collect() noexcept {
    for (Bell* bell = belfry_->TakeAll(); bell != nullptr;) {
        bell->ticket = ++lastTicket_;
        (youngest_ != nullptr ? youngest_->link : oldest_) = bell;
        youngest_ = bell;
        bell = std::exchange(bell->link, nullptr);
    }
}

// The oldest ring that was collected; nothing when it is younger than the ticket.
std::shared_ptr<QtEventLoop::Bell> QtEventLoop::PopUpTo(std::uint64_t ticket) noexcept {
    if (oldest_ == nullptr || oldest_->ticket > ticket) return nullptr;
    std::shared_ptr<Bell> bell = std::move(oldest_->self);
    oldest_ = bell->link;
    if (oldest_ == nullptr) youngest_ = nullptr;
    bell->rung = false;
    return bell;
}

void QtEventLoop::DeliverCollected() {
    // What a handler that yields collects is served there.
    const std::uint64_t lastTicket = lastTicket_;
    while (const auto bell = PopUpTo(lastTicket))
        if (!bell->destroyed) Run(bell->handler);
}

void QtEventLoop::OnWake() {
    // The toolkit's events of a Yield, not those of a dialog that one of them opened: the descriptor
    // stays readable and wakes the next pass.
    if (QThread::currentThread()->loopLevel() == yieldingLevel_) return;
    Collect();
    DeliverCollected();
}

void QtEventLoop::Yield() {
    Collect();
    DeliverCollected();
    struct Yielding {
        int& level;
        int outer;
        ~Yielding() { level = outer; }
    };
    const Yielding yielding{yieldingLevel_, yieldingLevel_};
    yieldingLevel_ = QThread::currentThread()->loopLevel();
    QCoreApplication::processEvents(QEventLoop::AllEvents);
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
