#pragma once

#include <string>

#include "core/history/ReadingValues.h"

namespace sonavex {

// 999.756 Hz at -1 dBFS, live; noise hides the third harmonic.
inline ExportedMeasurement LiveReading(const std::string& time = "2026-11-23 10:58:21") {
    ExportedMeasurement measurement;
    measurement.version = "2.1.14";
    measurement.time = time;
    measurement.channel = "left";
    AnalyzedReading& analyzed = measurement.reading;
    analyzed.rateHz = 48000;
    analyzed.stream = StreamDetails();
    analyzed.stream->input = "Line In";
    analyzed.stream->output = "Line Out";
    analyzed.stream->inputBits = 24;
    analyzed.stream->outputBits = 16;
    analyzed.stimulus = "sine:1000";
    analyzed.playedHz = {999.755859375};
    Reading& reading = analyzed.values.reading;
    reading.frequencyHz = {999.755859375, 1e-6, false};
    reading.levelDbfs = {-1.0, 1e-6, false};
    reading.thdDb = {-102.57, 0.07, false};
    reading.thdnDb = {-97.7, 0.04, false};
    reading.noiseDbfs = {-98.5, std::nullopt, false};
    reading.harmonics = {{2, {-104.0, 0.1, false}, {12.5, 1.0, false}}, {3, {-141.0, {}, true}, {}}};
    reading.highestOrder = 9;
    reading.length = 65536;
    reading.blocks = 8;
    reading.bits = 24;
    reading.band = {20, 20000};
    return measurement;
}

inline HistoryEntry AnyEntry(const std::string& id = "a") {
    HistoryEntry entry = EntryOf(LiveReading());
    entry.id = id;
    return entry;
}

inline std::string AnyLine(const std::string& id = "a") {
    return EntryLine(AnyEntry(id), DetailsOf(LiveReading().reading), {});
}

}  // namespace sonavex
