#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "core/ports/Background.h"
#include "platform/plain/PlainEventLoop.h"

namespace sonavex {

// Contract of every background. An Adapter is constructed from an event loop.
template <class Adapter>
class BackgroundContract : public testing::Test {
protected:
    // A task whose result appends the name to the log.
    Background::Task Writing(const std::string& name) {
        return [this, name] { return [this, name] { log_ += name; }; };
    }
    void Run(const std::string& name, Background::Line line = Background::Line::kAnalysis) {
        background_->Run(line, Writing(name));
    }
    bool Logs(const std::string& text) {
        return loop_.RunUntil([&] { return log_ == text; }, std::chrono::seconds(10));
    }

    PlainEventLoop loop_;
    std::unique_ptr<Background> background_ = std::make_unique<Adapter>(loop_);
    std::string log_;
};

TYPED_TEST_SUITE_P(BackgroundContract);

TYPED_TEST_P(BackgroundContract, DeliversTheResultThroughTheEventLoopOnItsThread) {
    std::thread::id thread;
    this->background_->Run(Background::Line::kAnalysis, [this, &thread] {
        return [this, &thread] {
            thread = std::this_thread::get_id();
            this->log_ += "a";
        };
    });
    EXPECT_EQ(this->log_, "");
    EXPECT_TRUE(this->Logs("a"));
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TYPED_TEST_P(BackgroundContract, TheNewestTaskOfEachLineIsRun) {
    this->Run("a");
    this->Run("s", Background::Line::kStimulus);
    this->Run("b");
    EXPECT_TRUE(this->loop_.RunUntil(
        [this] {
            return this->log_.find('b') != std::string::npos && this->log_.find('s') != std::string::npos;
        },
        std::chrono::seconds(10)));
}

TYPED_TEST_P(BackgroundContract, AResultMayRunTheNextTask) {
    this->background_->Run(Background::Line::kAnalysis, [this] {
        return [this] {
            this->log_ += "a";
            this->Run("b");
        };
    });
    EXPECT_TRUE(this->Logs("ab"));
}

TYPED_TEST_P(BackgroundContract, AnErrorLeavesTheLoopAndTheNextTaskRuns) {
    this->background_->Run(Background::Line::kAnalysis,
                           []() -> Background::Result { throw std::runtime_error("task"); });
    EXPECT_THROW(this->Logs("never"), std::runtime_error);
    this->background_->Run(Background::Line::kAnalysis, [] { return Background::Result(); });
    this->Run("a");
    EXPECT_TRUE(this->Logs("a"));
}

TYPED_TEST_P(BackgroundContract, DestructionDiscardsResults) {
    this->Run("a");
    this->background_.reset();
    this->loop_.Yield();
    EXPECT_EQ(this->log_, "");
}

REGISTER_TYPED_TEST_SUITE_P(BackgroundContract, DeliversTheResultThroughTheEventLoopOnItsThread,
                            TheNewestTaskOfEachLineIsRun, AResultMayRunTheNextTask,
                            AnErrorLeavesTheLoopAndTheNextTaskRuns, DestructionDiscardsResults);

}  // namespace sonavex
