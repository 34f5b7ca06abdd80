#include <QEventLoop>
#include <QTimer>

#include "contract/EventLoopContract.h"
#include "platform/qt/QtEventLoop.h"

namespace sonavex {
namespace {

class QtPlatform {
public:
    EventLoop& Loop() { return loop_; }
    void Yield() { loop_.Yield(); }
    int Errors() const { return errors_; }
    bool RunUntil(const std::function<bool()>& condition, std::chrono::nanoseconds limit) {
        const auto end = loop_.Now() + limit;
        QEventLoop running;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &running, [&] {
            if (condition() || loop_.Now() >= end) running.quit();
        });
        look.start(2);
        if (!condition()) running.exec();
        return condition();
    }

private:
    int errors_ = 0;
    QtEventLoop loop_{[this](const std::exception_ptr&) { ++errors_; }};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, EventLoopContract, QtPlatform);

}  // namespace
}  // namespace sonavex
