#pragma once

#include <map>
#include <set>
#include <string>

#include "core/ports/QuenbyVista.h"
#include "support/CallLog.h"

namespace sonavex {

// A card in memory. Records "OpenSoundCard PLAYBACK|CAPTURE|RESERVED", "CloseSoundCard", the names of
// the Gets, and the Sets with their values ("SetMasterVolume 50").
class MemoryVista : public QuenbyVista {
public:
    explicit MemoryVista(CallLog& log) noexcept : log_(log) {}

    void OpenSoundCard(const std::string& playbackDevice, const std::string& captureDevice,
                       const std::string& reserved, std::int32_t& status) override {
        log_.Call("OpenSoundCard", playbackDevice + '|' + captureDevice + '|' + reserved);
        status = 0;
    }
    void CloseSoundCard(std::int32_t& status) override {
        log_.Call("CloseSoundCard");
        status = 0;
    }
    std::int32_t GetMasterVolume(std::int32_t& s) override { return Get("MasterVolume", masterVolume, s); }
    std::int32_t SetMasterVolume(std::int32_t level, std::int32_t& s) override {
        Set("MasterVolume", masterVolume, level, s);
        if (masterVolume > highestMaster) masterVolume = highestMaster;
        return masterVolume;
    }
    bool GetMasterMute(std::int32_t& s) override { return Get("MasterMute", masterMute, s); }
    void SetMasterMute(bool mute, std::int32_t& s) override { Set("MasterMute", masterMute, mute, s); }
    std::int32_t GetLinePlayBack(std::int32_t& s) override { return Get("LinePlayBack", linePlayBack, s); }
    void SetLinePlayBack(std::int32_t level, std::int32_t& s) override {
        Set("LinePlayBack", linePlayBack, level, s);
    }
    bool GetLinePlayBackMute(std::int32_t& s) override {
        return Get("LinePlayBackMute", linePlayBackMute, s);
    }
    void SetLinePlayBackMute(bool mute, std::int32_t& s) override {
        Set("LinePlayBackMute", linePlayBackMute, mute, s);
    }
    std::int32_t GetMicPlayBack(std::int32_t& s) override { return Get("MicPlayBack", micPlayBack, s); }
    void SetMicPlayBack(std::int32_t level, std::int32_t& s) override {
        Set("MicPlayBack", micPlayBack, level, s);
    }
    bool GetMicPlayBackMute(std::int32_t& s) override { return Get("MicPlayBackMute", micPlayBackMute, s); }
    void SetMicPlayBackMute(bool mute, std::int32_t& s) override {
        Set("MicPlayBackMute", micPlayBackMute, mute, s);
    }
    bool GetMicBoost(std::int32_t& s) override { return Get("MicBoost", micBoost, s); }
    void SetMicBoost(bool boost, std::int32_t& s) override { Set("MicBoost", micBoost, boost, s); }
    bool GetNoMonitor(std::int32_t& s) override { return Get("NoMonitor", noMonitor, s); }
    void SetNoMonitor(bool noMon, std::int32_t& s) override { Set("NoMonitor", noMonitor, noMon, s); }
    double GetBass(std::int32_t& s) override { return Get("Bass", bass, s); }
    void SetBass(double gainDb, std::int32_t& s) override { Set("Bass", bass, gainDb, s); }
    double GetMidRange(std::int32_t& s) override { return Get("MidRange", midRange, s); }
    void SetMidRange(double gainDb, std::int32_t& s) override { Set("MidRange", midRange, gainDb, s); }
    double GetTreble(std::int32_t& s) override { return Get("Treble", treble, s); }
    void SetTreble(double gainDb, std::int32_t& s) override { Set("Treble", treble, gainDb, s); }
    void GetEQRange(double& minimumDb, double& maximumDb, std::int32_t& s) override {
        minimumDb = eqMinimum;
        maximumDb = Get("EQRange", eqMaximum, s);
    }
    std::int32_t GetMicRecordVolume(std::int32_t& s) override {
        return Get("MicRecordVolume", micRecordVolume, s);
    }
    void SetMicRecordVolume(std::int32_t level, std::int32_t& s) override {
        Set("MicRecordVolume", micRecordVolume, level, s);
    }
    std::int32_t GetLineRecordVolume(std::int32_t& s) override {
        return Get("LineRecordVolume", lineRecordVolume, s);
    }
    void SetLineRecordVolume(std::int32_t level, std::int32_t& s) override {
        Set("LineRecordVolume", lineRecordVolume, level, s);
    }

    std::int32_t masterVolume = 80;
    bool masterMute = false;
    std::int32_t linePlayBack = 30;
    bool linePlayBackMute = true;
    std::int32_t micPlayBack = 20;
    bool micPlayBackMute = true;
    bool micBoost = false;
    bool noMonitor = true;
    double bass = -1.5;
    double midRange = 0.0;
    double treble = 6.0;
    std::int32_t micRecordVolume = 70;
    std::int32_t lineRecordVolume = 60;
    double eqMinimum = -12.0;
    double eqMaximum = 12.0;
    // What the card takes at most.
    std::int32_t highestMaster = 100;
    // Controls that the card lacks: the operations' names without Get and Set.
    std::set<std::string> missing;

private:
    std::int32_t Status(const std::string& control) const { return missing.count(control) != 0 ? 1 : 0; }

    template <class Value>
    Value Get(const std::string& control, const Value& value, std::int32_t& status) {
        log_.Call("Get" + control);
        status = Status(control);
        return value;
    }

    static std::string Text(bool value) { return value ? "True" : "False"; }
    static std::string Text(std::int32_t value) { return std::to_string(value); }
    static std::string Text(double value) { return std::to_string(value); }

    template <class Value>
    void Set(const std::string& control, Value& stored, Value value, std::int32_t& status) {
        log_.Call("Set" + control, Text(value));
        status = Status(control);
        if (status == 0) stored = value;
    }

    CallLog& log_;
};

}  // namespace sonavex
