#pragma once

#include <utility>

#include "core/ports/Background.h"

namespace sonavex {

// Runs tasks when the test says so; the newest waits.
class HeldBackground : public Background {
public:
    void Run(Line /*line*/, Task task) override {
        ++tasks;
        waiting_ = std::move(task);
    }
    void Complete() {
        if (const Task task = std::exchange(waiting_, nullptr)) task()();
    }

    int tasks = 0;

private:
    Task waiting_;
};

}  // namespace sonavex
