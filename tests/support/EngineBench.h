#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/audio/StreamEngine.h"
#include "platform/plain/MemorySettingsStore.h"
#include "support/FakeSoundSystem.h"
#include "support/Recorders.h"
#include "support/VirtualEventLoop.h"

namespace sonavex {

// A stream engine surrounded by fakes that write to one log, including yields.
struct EngineBench {
    explicit EngineBench(std::int32_t osMajorVersion = 10) {
        shared.OsMajorVersion = osMajorVersion;
        shared.SampleRate = 32000;
        loop.OnYield([this] { log.Note("Yield"); });
        engine.Trace = [this](std::string_view label, std::int32_t cursor) {
            traces.push_back(std::string(label) + '@' + std::to_string(cursor));
        };
    }

    // Brings the engine to the state after the program's start, with capture running. Clears the log.
    void Start() {
        ASSERT_TRUE(engine.CreateDevices());
        ASSERT_TRUE(engine.SetEvents());
        engine.ResetStream();
        engine.StartCapture();
        log.Clear();
    }

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

    CallLog log;
    std::vector<std::string> traces;  // label@cursor
    SharedState shared;
    MemorySettingsStore store;
    Settings settings{store};
    FakeSoundSystem sound{log};
    VirtualEventLoop loop;
    RecordingDialogs dialogs{log};
    RecordingErrorLog errorLog{log};
    RecordingMixers mixers{log};
    RecordingProcessor processor{log};
    StreamEngine engine{{shared, settings, sound, loop, dialogs, errorLog, mixers, processor}};
    std::size_t nextSegment = 0;
};

}  // namespace sonavex
