#pragma once

#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "core/ports/Background.h"
#include "core/ports/EventLoop.h"

namespace sonavex {

// Runs a task at once and delivers its result through the event loop.
class InlineBackground : public Background {
public:
    explicit InlineBackground(EventLoop& loop) : done_(loop.CreateSignal([this] { Deliver(); })) {}

    void Run(Line /*line*/, Task task) override {
        try {
            results_.push_back(task());
        } catch (...) {
            results_.push_back([error = std::current_exception()] { std::rethrow_exception(error); });
        }
        done_->Raise();
    }

private:
    void Deliver() {
        const Result result = std::move(results_.front());
        results_.erase(results_.begin());
        if (!results_.empty()) done_->Raise();
        if (result) result();
    }

    std::vector<Result> results_;
    std::unique_ptr<Signal> done_;
};

}  // namespace sonavex
