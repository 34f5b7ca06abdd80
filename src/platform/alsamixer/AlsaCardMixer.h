#pragma once

#include <alsa/asoundlib.h>

#include <memory>
#include <string>
#include <vector>

namespace sonavex {

// The simple mixer of one card, open. User-interface thread only.
class AlsaCardMixer {
public:
    // ctl: libasound's name of the card's control, such as "hw:0". RuntimeError when it does not open.
    explicit AlsaCardMixer(const std::string& ctl);

    // Every simple element of the card.
    const std::vector<snd_mixer_elem_t*>& Elements() const noexcept { return elements_; }

    // Takes in what others changed. RuntimeError when the card is gone, from then on always.
    void Update();

    // Hundredths of a decibel at the ends of the range of values of a plain control of the card, which
    // simple elements do not tell for all kinds. False when the card does not tell either.
    bool Decibels(const std::string& control, long minimum, long maximum, long& minimumDb, long& maximumDb);

    // Whether Update, or a write, has seen a change since the last call.
    bool TakeChange() noexcept;
    void NoteChange() noexcept { changed_ = true; }
    bool Gone() const noexcept { return gone_; }

private:
    struct Close {
        void operator()(snd_mixer_t* mixer) const noexcept { snd_mixer_close(mixer); }
    };

    bool Pending();
    [[noreturn]] void Lose();

    std::string ctl_;
    std::unique_ptr<snd_mixer_t, Close> mixer_;
    std::vector<snd_mixer_elem_t*> elements_;
    bool changed_ = false;
    bool gone_ = false;
};

// Throws the RuntimeError of a libasound result below 0.
void CheckAlsa(int result);

}  // namespace sonavex
