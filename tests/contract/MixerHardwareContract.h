#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "core/mixer/ControlNames.h"
#include "core/mixer/DeviceLevels.h"
#include "core/mixer/HardwareMixerControl.h"
#include "core/mixer/LegacyMixerState.h"
#include "core/mixer/MixerLocators.h"
#include "core/mixer/QuenbyVista.h"
#include "core/mixer/VistaSound.h"
#include "platform/plain/PlainEventLoop.h"
#include "support/Wait.h"

namespace sonavex {

// The rules that every MixerHardware keeps, as the older control, the library and the raw levels use it.
// A Platform is default constructible, lives as long as a test and offers
//   std::unique_ptr<MixerHardware> Create(EventLoop&)
//   std::string PlaybackName(), CaptureName()       names of one device, as the sound system has them
//   std::set<MixerFunction> Functions()             the controls of that device
//   void ChangeOutside(MixerFunction, values)       another program writes these raw values
//   std::vector<std::int32_t> OddValues()           two different raw master levels between whole percents
//   void TakeAway()                                 removes the device
template <class Platform>
class MixerHardwareContract : public testing::Test {
protected:
    using Library = QuenbyVista;
    using enum MixerFunction;

    // A level or switch: how the older control locates it and how the library reads and writes it. The
    // library has no wave level.
    template <class Value>
    struct Operation {
        MixerFunction function;
        MixerLocator MixerLocatorTable::*entry;
        Value fallback{};
        std::function<Value(Library&, std::int32_t&)> get{};
        std::function<void(Library&, Value, std::int32_t&)> set{};
    };
    const std::vector<Operation<std::int32_t>> levelOperations{
        {kMasterVolume, &MixerLocatorTable::MasterVolume, 100, &Library::GetMasterVolume,
         &Library::SetMasterVolume},
        {kWaveVolume, &MixerLocatorTable::WaveVolume},
        {kLineVolume, &MixerLocatorTable::LineVolume, 0, &Library::GetLinePlayBack,
         &Library::SetLinePlayBack},
        {kMicVolume, &MixerLocatorTable::MicVolume, 0, &Library::GetMicPlayBack, &Library::SetMicPlayBack},
        {kMicRecord, &MixerLocatorTable::MicRecord, 100, &Library::GetMicRecordVolume,
         &Library::SetMicRecordVolume},
        {kLineRecord, &MixerLocatorTable::LineRecord, 100, &Library::GetLineRecordVolume,
         &Library::SetLineRecordVolume}};
    const std::vector<Operation<bool>> switchOperations{
        {kMasterMute, &MixerLocatorTable::MasterMute, false, &Library::GetMasterMute,
         &Library::SetMasterMute},
        {kWaveMute, &MixerLocatorTable::WaveMute},
        {kLineMute, &MixerLocatorTable::LineMute, true, &Library::GetLinePlayBackMute,
         &Library::SetLinePlayBackMute},
        {kMicMute, &MixerLocatorTable::MicMute, true, &Library::GetMicPlayBackMute,
         &Library::SetMicPlayBackMute},
        {kMicBoost, &MixerLocatorTable::MicBoost, false, &Library::GetMicBoost, &Library::SetMicBoost},
        {kMonitorOff, &MixerLocatorTable::MonitorOff, true, &Library::GetNoMonitor, &Library::SetNoMonitor}};
    const std::vector<Operation<double>> toneOperations{
        {kBass, nullptr, 0.0, &Library::GetBass, &Library::SetBass},
        {kMidRange, nullptr, 0.0, &Library::GetMidRange, &Library::SetMidRange},
        {kTreble, nullptr, 0.0, &Library::GetTreble, &Library::SetTreble}};

    MixerHardwareContract() : hardware(platform.Create(loop)) {}
    void SetUp() override {
        ASSERT_TRUE(Select(output, platform.PlaybackName()));
        ASSERT_TRUE(Select(input, platform.CaptureName()));
        library.OpenSoundCard(platform.PlaybackName(), platform.CaptureName(), "", status);
        ASSERT_EQ(status, 0);
        SetUpSoundControls(mixers);
    }
    static bool Select(MixerControl& mixer, const std::string& name) {
        for (std::int32_t number = 0; number < mixer.DeviceCount(); ++number) {
            mixer.SelectDevice(number);
            if (mixer.DeviceName() == name) return true;
        }
        return false;
    }

    bool Has(MixerFunction function) { return platform.Functions().count(function) != 0; }
    MixerDevice DeviceOf(MixerSide side) {
        return {side, side == MixerSide::kPlayback ? platform.PlaybackName() : platform.CaptureName()};
    }
    bool Serves(MixerFunction function) {
        return Has(function) && hardware->Open(DeviceOf(SideOf(function)))->Serves(function);
    }
    std::string Raw() {
        return levels.Read(DeviceOf(MixerSide::kPlayback)).value_or("gone") +
               levels.Read(DeviceOf(MixerSide::kCapture)).value_or("gone");
    }
    void ChangeMasterOutside(const std::vector<std::int32_t>& values) {
        if (Has(kMasterVolume)) platform.ChangeOutside(kMasterVolume, values);
    }
    std::vector<std::int32_t> Master() {
        return hardware->Open(DeviceOf(MixerSide::kPlayback))->Find(kMasterVolume)->Read();
    }

    // The older control of the function, selected.
    template <class Value>
    MixerControl& Located(const Operation<Value>& operation) {
        MixerControl& mixer = SideOf(operation.function) == MixerSide::kPlayback ? output : input;
        SelectLocated(mixer, mixers.MixerLocators.*operation.entry);
        return mixer;
    }
    template <class Value>
    void SetOlder(const Operation<Value>& operation, std::int32_t value) {
        MixerControl& mixer = Located(operation);
        mixer.SetValue(0, value);
        mixer.SetValue(1, value);
        mixer.Commit();
    }

    Platform platform;
    PlainEventLoop loop;
    std::unique_ptr<MixerHardware> hardware;
    HardwareMixerControl output{*hardware, MixerSide::kPlayback};
    HardwareMixerControl input{*hardware, MixerSide::kCapture};
    LegacyMixer mixers{output, input};
    QuenbyVista library{*hardware};
    DeviceLevels levels{*hardware};
    std::int32_t status = -1;
};

TYPED_TEST_SUITE_P(MixerHardwareContract);

TYPED_TEST_P(MixerHardwareContract, OpensKnownDevicesOnly) {
    for (const MixerSide side : {MixerSide::kPlayback, MixerSide::kCapture}) {
        EXPECT_NE(this->hardware->Open(this->DeviceOf(side)), nullptr);
        EXPECT_EQ(this->hardware->Open({side, "no such device"}), nullptr);
        EXPECT_EQ(this->hardware->Open({side, ""}), nullptr);
    }
}

TYPED_TEST_P(MixerHardwareContract, OffersTheControlsThatTheDeviceHas) {
    for (int i = 0; i <= static_cast<int>(MixerFunction::kLineSource); ++i) {
        const auto function = static_cast<MixerFunction>(i);
        const auto device = this->hardware->Open(this->DeviceOf(SideOf(function)));
        EXPECT_EQ(device->Find(function) != nullptr, this->Has(function)) << i;
    }
    const MixerLocatorTable& table = this->mixers.MixerLocators;
    EXPECT_EQ(table.MicSource.Available(), this->Has(MixerFunction::kMicSource));
    EXPECT_EQ(table.LineSource.Available(), this->Has(MixerFunction::kLineSource));
    const auto check = [&](const auto& operations) {
        for (const auto& operation : operations) {
            const int function = static_cast<int>(operation.function);
            if (operation.entry != nullptr) {
                EXPECT_EQ((table.*operation.entry).Available(), this->Has(operation.function)) << function;
            }
            if (!operation.get) continue;
            const auto value = operation.get(this->library, this->status);
            EXPECT_EQ(this->status == 0, this->Serves(operation.function)) << function;
            if (this->status != 0) {
                EXPECT_EQ(value, operation.fallback) << function;
            }
        }
    };
    check(this->levelOperations);
    check(this->switchOperations);
    check(this->toneOperations);
}

TYPED_TEST_P(MixerHardwareContract, ReadsEveryControlInsideItsRange) {
    for (const MixerSide side : {MixerSide::kPlayback, MixerSide::kCapture}) {
        const auto device = this->hardware->Open(this->DeviceOf(side));
        std::set<std::string> keys;
        for (const DeviceMixer::RawEntry& entry : device->RawEntries()) {
            EXPECT_TRUE(keys.insert(entry.key).second) << entry.key;
            const std::vector<std::int32_t> values = entry.element->Read();
            EXPECT_FALSE(values.empty()) << entry.key;
            for (const std::int32_t value : values) {
                EXPECT_GE(value, entry.element->Range().minimum) << entry.key;
                EXPECT_LE(value, entry.element->Range().maximum) << entry.key;
            }
        }
        EXPECT_FALSE(keys.empty());
        MixerControl& mixer = side == MixerSide::kPlayback ? this->output : this->input;
        ForEachControl(mixer, [&](const std::string& name) {
            EXPECT_EQ(mixer.Description().minimum, 0);
            EXPECT_EQ(mixer.Description().maximum,
                      mixer.Description().type == mixer_type::kLevel ? 65535 : 1);
            for (const std::int16_t channel : {std::int16_t{0}, std::int16_t{1}}) {
                EXPECT_GE(mixer.Value(channel), 0) << name;
                EXPECT_LE(mixer.Value(channel), mixer.Description().maximum) << name;
            }
        });
    }
    for (const auto& level : this->levelOperations) {
        if (!level.get) continue;
        EXPECT_GE(level.get(this->library, this->status), 0);
        EXPECT_LE(level.get(this->library, this->status), 100);
    }
}

TYPED_TEST_P(MixerHardwareContract, KeepsLevelsWithinAStep) {
    for (const auto& level : this->levelOperations) {
        if (!this->Has(level.function)) continue;
        const int function = static_cast<int>(level.function);
        const auto device = this->hardware->Open(this->DeviceOf(SideOf(level.function)));
        const RawRange range = device->Find(level.function)->Range();
        const double step = 1.0 / (static_cast<double>(range.maximum) - range.minimum);
        for (const std::int32_t value : {6554, 19660, 32768, 65500, 0, 65535}) {
            this->SetOlder(level, value);
            const double tolerance = value % 65535 == 0 ? 0.0 : 65535.0 * step / 2.0 + 1.0;
            EXPECT_NEAR(this->Located(level).Value(0), value, tolerance) << function;
            EXPECT_NEAR(this->Located(level).Value(1), value, tolerance) << function;
        }
        if (!level.get || !this->Serves(level.function)) continue;
        for (std::int32_t percent = 0; percent <= 100; percent += 5) {
            level.set(this->library, percent, this->status);
            EXPECT_EQ(this->status, 0);
            const double tolerance = percent % 100 == 0 ? 0.0 : 100.0 * step / 2.0 + 0.5;
            EXPECT_NEAR(level.get(this->library, this->status), percent, tolerance) << function;
        }
    }
    for (const std::int32_t percent : {37, 99, 0, 64}) {
        const std::int32_t accepted = this->library.SetMasterVolume(percent, this->status);
        EXPECT_EQ(accepted, this->library.GetMasterVolume(this->status));
    }
}

TYPED_TEST_P(MixerHardwareContract, SwitchesSwitches) {
    for (const auto& operation : this->switchOperations) {
        const int function = static_cast<int>(operation.function);
        for (const bool on : {true, false, true}) {
            if (this->Has(operation.function)) {
                this->SetOlder(operation, on ? 0 : 1);
                EXPECT_EQ(this->Located(operation).Value(0), on ? 0 : 1) << function;
            }
            if (!operation.set) continue;
            operation.set(this->library, on, this->status);
            EXPECT_EQ(this->status == 0, this->Has(operation.function)) << function;
            if (this->status == 0) {
                EXPECT_EQ(operation.get(this->library, this->status), on) << function;
            }
        }
    }
}

TYPED_TEST_P(MixerHardwareContract, SelectsOneSourceAtATime) {
    if (!this->Has(MixerFunction::kMicSource)) {
        EXPECT_FALSE(this->mixers.MixerLocators.MicSource.Available());
        return;
    }
    const MixerLocator mic = this->mixers.MixerLocators.MicSource;
    const MixerLocator line = this->mixers.MixerLocators.LineSource;
    const auto set = [this](const MixerLocator& entry, std::int32_t value) {
        SelectLocated(this->input, entry);
        this->input.SetValue(0, value);
        this->input.Commit();
    };
    for (const auto& [chosen, other] : {std::pair{mic, line}, std::pair{line, mic}, std::pair{mic, line}}) {
        set(chosen, 1);
        EXPECT_EQ(ReadLocated(this->input, chosen).Value, 1.0F);
        EXPECT_EQ(ReadLocated(this->input, other).Value, 0.0F);
    }
    set(mic, 0);
    EXPECT_EQ(ReadLocated(this->input, mic).Value, 1.0F) << "one source is always selected";
}

TYPED_TEST_P(MixerHardwareContract, TakesTonesInsideTheirRange) {
    double minimumDb = 1.0;
    double maximumDb = 1.0;
    this->library.GetEQRange(minimumDb, maximumDb, this->status);
    EXPECT_EQ(this->status == 0, this->Has(MixerFunction::kBass));
    if (this->status != 0) {
        EXPECT_EQ(minimumDb, 0.0);
        EXPECT_EQ(maximumDb, 0.0);
        return;
    }
    ASSERT_LT(minimumDb, maximumDb);
    for (const auto& tone : this->toneOperations) {
        if (!this->Has(tone.function)) continue;
        for (const double gainDb : {minimumDb, 0.0, maximumDb}) {
            tone.set(this->library, gainDb, this->status);
            EXPECT_EQ(this->status, 0);
            EXPECT_NEAR(tone.get(this->library, this->status), gainDb, 0.76);
        }
        tone.set(this->library, maximumDb + 100.0, this->status);
        EXPECT_NEAR(tone.get(this->library, this->status), maximumDb, 1e-9);
    }
}

TYPED_TEST_P(MixerHardwareContract, KeepsRawValuesWhereNothingChanges) {
    this->ChangeMasterOutside(this->platform.OddValues());
    const std::string before = this->Raw();
    SetLegacyMixerState(this->output, GetLegacyMixerState(this->output));
    SetLegacyMixerState(this->input, GetLegacyMixerState(this->input));
    VistaSound::SetVistaMixerState(this->library, VistaSound::GetVistaMixerState(this->library));
    EXPECT_EQ(this->Raw(), before);
}

constexpr const char* kOtherVistaLine = "5,True,6,False,7,False,True,False,3,3,3,8,9,";

TYPED_TEST_P(MixerHardwareContract, RestoresItsStateLines) {
    const std::string outputState = GetLegacyMixerState(this->output);
    const std::string inputState = GetLegacyMixerState(this->input);
    for (const auto& level : this->levelOperations)
        if (this->Has(level.function)) this->SetOlder(level, this->Located(level).Value(0) == 0 ? 65535 : 0);
    for (const auto& operation : this->switchOperations)
        if (this->Has(operation.function)) this->SetOlder(operation, 1 - this->Located(operation).Value(0));
    EXPECT_NE(GetLegacyMixerState(this->output), outputState);
    EXPECT_NE(GetLegacyMixerState(this->input), inputState);
    SetLegacyMixerState(this->output, outputState);
    SetLegacyMixerState(this->input, inputState);
    EXPECT_EQ(GetLegacyMixerState(this->output), outputState);
    EXPECT_EQ(GetLegacyMixerState(this->input), inputState);

    const std::string before = VistaSound::GetVistaMixerState(this->library);
    VistaSound::SetVistaMixerState(this->library, kOtherVistaLine);
    EXPECT_NE(VistaSound::GetVistaMixerState(this->library), before);
    VistaSound::SetVistaMixerState(this->library, before);
    EXPECT_EQ(VistaSound::GetVistaMixerState(this->library), before);
}

TYPED_TEST_P(MixerHardwareContract, RestoresRawLevelsExactly) {
    this->ChangeMasterOutside(this->platform.OddValues());
    const std::string before = this->Raw();
    const auto playback = this->levels.Read(this->DeviceOf(MixerSide::kPlayback));
    const auto capture = this->levels.Read(this->DeviceOf(MixerSide::kCapture));
    ASSERT_TRUE(playback && capture);
    VistaSound::SetVistaMixerState(this->library, kOtherVistaLine);
    ASSERT_NE(this->Raw(), before);
    EXPECT_TRUE(this->levels.Write(this->DeviceOf(MixerSide::kPlayback), *playback));
    EXPECT_TRUE(this->levels.Write(this->DeviceOf(MixerSide::kCapture), *capture));
    EXPECT_EQ(this->Raw(), before);
    EXPECT_TRUE(this->levels.Write(this->DeviceOf(MixerSide::kPlayback), "a control of another card\t1 2\n"));
    EXPECT_EQ(this->Raw(), before);
}

TYPED_TEST_P(MixerHardwareContract, KeepsTheBalance) {
    const std::vector<std::int32_t> odd = this->platform.OddValues();
    this->ChangeMasterOutside(odd);
    this->library.SetMasterVolume(this->library.GetMasterVolume(this->status) / 2, this->status);
    const std::vector<std::int32_t> halved = this->Master();
    const auto device = this->hardware->Open(this->DeviceOf(MixerSide::kPlayback));
    const double minimum = device->Find(MixerFunction::kMasterVolume)->Range().minimum;
    EXPECT_NE(halved, odd);
    EXPECT_NEAR((halved[0] - minimum) / (halved[1] - minimum), (odd[0] - minimum) / (odd[1] - minimum), 0.05);
}

TYPED_TEST_P(MixerHardwareContract, SeesChangesFromOutside) {
    const std::vector<std::int32_t> odd = this->platform.OddValues();
    const std::vector<std::int32_t> even(odd.size(), odd[0]);
    for (const std::vector<std::int32_t>& values : {odd, even, odd}) {
        this->ChangeMasterOutside(values);
        EXPECT_EQ(this->Master(), values);
    }
}

TYPED_TEST_P(MixerHardwareContract, ReportsChangesFromOutside) {
    int changes = 0;
    this->hardware->OnChange([&] { ++changes; });
    static_cast<void>(this->library.GetMasterVolume(this->status));
    // Opening the devices may have caused reports too.
    WaitUntil(
        this->loop, [] { return false; }, std::chrono::milliseconds(300));
    changes = 0;
    this->ChangeMasterOutside(this->platform.OddValues());
    EXPECT_TRUE(WaitUntil(
        this->loop, [&] { return changes > 0; }, std::chrono::seconds(5)));
}

TYPED_TEST_P(MixerHardwareContract, OfADeviceThatIsGoneFails) {
    this->platform.TakeAway();
    for (const auto& level : this->levelOperations) {
        if (!this->Has(level.function)) continue;
        EXPECT_EQ(this->Located(level).Value(0), -1);
        this->SetOlder(level, 1);
    }
    for (const auto& operation : this->switchOperations)
        if (this->Has(operation.function)) {
            EXPECT_EQ(this->Located(operation).Value(0), -1);
        }
    EXPECT_EQ(VistaSound::GetVistaMixerState(this->library),
              "100,False,0,True,0,True,False,True,0,0,0,100,100,");
    static_cast<void>(this->library.GetMasterVolume(this->status));
    EXPECT_NE(this->status, 0);
    EXPECT_EQ(this->levels.Read(this->DeviceOf(MixerSide::kPlayback)), std::nullopt);
    EXPECT_FALSE(this->levels.Write(this->DeviceOf(MixerSide::kPlayback), ""));
}

REGISTER_TYPED_TEST_SUITE_P(MixerHardwareContract, OpensKnownDevicesOnly, OffersTheControlsThatTheDeviceHas,
                            ReadsEveryControlInsideItsRange, KeepsLevelsWithinAStep, SwitchesSwitches,
                            SelectsOneSourceAtATime, TakesTonesInsideTheirRange,
                            KeepsRawValuesWhereNothingChanges, RestoresItsStateLines,
                            RestoresRawLevelsExactly, KeepsTheBalance, SeesChangesFromOutside,
                            ReportsChangesFromOutside, OfADeviceThatIsGoneFails);

}  // namespace sonavex
