#include "core/audio/Instrument.h"

#include <optional>

#include "core/ports/SoundErrors.h"

namespace sonavex {

Instrument::Instrument(const Needs& needs, const StreamWatch::Policy& policy)
    : Settings(needs.store),
      Meter(Shared),
      HiTimer1(needs.loop, Meter.Generator, [this] { return Engine.Restarting(); }),
      Engine({Shared, Settings, needs.sound, needs.loop, needs.dialogs, needs.errorLog, needs.mixers, Meter}),
      Fine(needs.loop, Engine),
      UsedBits(needs.loop, Engine, Fine),
      Watch({needs.loop, needs.sound, Engine, needs.errorLog, Shared, Settings}, policy) {
    Engine.OnRebuilt = [this] { HiTimer1.ForgetOwed(); };
    Engine.OnNotified = [this] { Watch.Notified(); };
    Engine.OnBlockQueued = [this] {
        Watch.BlockQueued();
        if (OnBlockQueued) OnBlockQueued();
    };
}

void Instrument::StartCapture() {
    std::optional<RuntimeError> loss;
    try {
        Engine.StartCapture();
    } catch (const RuntimeError& error) {
        if (error.Number() != sound_error::kBufferLost) throw;
        loss = error;
    }
    Watch.Start();
    if (loss) Watch.DeviceLost(*loss);
}

void Instrument::SetVolume(std::int32_t hundredthsDb) {
    PlaybackBuffer* const buffer = Engine.SecondaryBuffer();
    if (buffer == nullptr || Engine.FullVolume()) return;
    try {
        buffer->SetVolume(hundredthsDb);
    } catch (const RuntimeError& error) {
        if (error.Number() != sound_error::kBufferLost) throw;
    }
}

}  // namespace sonavex
