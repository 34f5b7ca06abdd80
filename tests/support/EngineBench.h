#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

#include "support/FakeSoundSystem.h"
#include "support/World.h"

namespace sonavex {

// A stream engine on a sound system, with yields in the log. The simulated card moves only when stepped.
template <class Sound>
struct EngineOn : World {
    explicit EngineOn(std::int32_t osMajorVersion = 10) {
        shared.OsMajorVersion = osMajorVersion;
        shared.SampleRate = 32000;
        loop.OnYield([this] { log.Note("Yield"); });
        engine.Trace = [this](std::string_view label, std::int32_t cursor) {
            traces.push_back(std::string(label) + '@' + std::to_string(cursor));
        };
    }
    StreamEngine::Needs Needs() {
        return {shared, settings, sound, loop, dialogs, errorLog, mixers, processor};
    }

    // Brings the engine to the state after the program's start, with capture running. Clears the log.
    void Start() {
        ASSERT_TRUE(engine.CreateDevices());
        ASSERT_TRUE(engine.SetEvents());
        engine.ResetStream();
        engine.StartCapture();
        log.Clear();
    }

    std::vector<std::string> traces;  // label@cursor
    SharedState shared;
    Settings settings{store};
    Sound sound = MakeSound(log, loop);
    RecordingProcessor processor{log};
    StreamEngine engine{Needs()};

private:
    static Sound MakeSound(CallLog& log, VirtualEventLoop& loop) {
        if constexpr (std::is_constructible_v<Sound, CallLog&>)
            return Sound(log);
        else
            return Sound(loop, Sound::Pace::kStepped);
    }
};

// A stream engine on scripted devices.
struct EngineBench : EngineOn<FakeSoundSystem> {
    using EngineOn::EngineOn;

    // Fires segments in order until `blocks` more blocks have been processed.
    void RunBlocks(int blocks) {
        for (int i = 0; i < blocks; ++i) sound.FireSegment(nextSegment++ % 4);
    }

    // Runs playback until the next block to write is `index`.
    void RunUpToIndex(std::int32_t index) {
        Start();
        sound.restingCursors = {0, 0};
        RunBlocks(7);
        RunBlocks(1);
        sound.restingCursors = {-1, -1};  // in no block
        RunBlocks(8 + index);
        sound.restingCursors = {40000, 40000};  // behind the first four blocks
        ASSERT_EQ(engine.PlayBlockIndex, index);
        ASSERT_FALSE(engine.RestartPending);
        ASSERT_EQ(engine.Overruns, 0U);
        log.Clear();
        traces.clear();
        sound.written.clear();
    }

    std::size_t nextSegment = 0;
};

}  // namespace sonavex
