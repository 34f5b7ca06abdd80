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
    ~AlsaCardMixer();
    AlsaCardMixer(const AlsaCardMixer&) = delete;
    AlsaCardMixer& operator=(const AlsaCardMixer&) = delete;

    // Every simple element that the card had when it was opened and still has.
    const std::vector<snd_mixer_elem_t*>& Elements() const noexcept { return elements_; }
    // Whether it is still one of them. A driver may take an element away in any Update; what asks for one
    // that is gone must not touch it.
    bool Holds(const snd_mixer_elem_t* element) const noexcept;
    // Whether elements have come or gone since the card was opened.
    bool Altered() const noexcept { return altered_; }

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

    static int ElementEvent(snd_mixer_elem_t* element, unsigned mask);
    static int CardEvent(snd_mixer_t* mixer, unsigned mask, snd_mixer_elem_t* element);
    void Forget(const snd_mixer_elem_t* element);
    bool Pending();
    [[noreturn]] void Lose();

    std::string ctl_;
    std::unique_ptr<snd_mixer_t, Close> mixer_;
    std::vector<snd_mixer_elem_t*> elements_;
    bool changed_ = false;
    bool gone_ = false;
    bool altered_ = false;
};

// Throws the RuntimeError of a libasound result below 0.
void CheckAlsa(int result);

}  // namespace sonavex
