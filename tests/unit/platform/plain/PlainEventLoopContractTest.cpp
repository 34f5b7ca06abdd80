#include "contract/EventLoopContract.h"
#include "platform/plain/PlainEventLoop.h"

namespace sonavex {
namespace {

class PlainPlatform {
public:
    EventLoop& Loop() { return loop_; }
    void Yield() {
        try {
            loop_.Yield();
        } catch (const std::runtime_error&) {
            ++errors_;
        }
    }
    int Errors() const { return errors_; }
    bool RunUntil(const std::function<bool()>& condition, std::chrono::nanoseconds limit) {
        return loop_.RunUntil(condition, limit);
    }

private:
    PlainEventLoop loop_;
    int errors_ = 0;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Plain, EventLoopContract, PlainPlatform);

}  // namespace
}  // namespace sonavex
