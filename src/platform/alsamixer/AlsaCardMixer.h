#pragma once

#include <alsa/asoundlib.h>

#include <memory>
#include <string>
#include <vector>

namespace sonavex {

// The open simple mixer of one card.
class AlsaCardMixer {
public:
    // ctl: libasound's name of the card's control, such as "hw:0". RuntimeError when it does not open.
    explicit AlsaCardMixer(const std::string& ctl);
    ~AlsaCardMixer();
    AlsaCardMixer(const AlsaCardMixer&) = delete;
    AlsaCardMixer& operator=(const AlsaCardMixer&) = delete;

    // The simple elements that existed when the card was opened, without those removed since.
    const std::vector<snd_mixer_elem_t*>& Elements() const noexcept { return elements_; }
    // Whether the element still exists. A driver can remove an element in any Update; it must not be used
    // afterwards.
    bool Holds(const snd_mixer_elem_t* element) const noexcept;
    // Whether elements have been added or removed since the card was opened.
    bool Altered() const noexcept { return altered_; }

    // Processes changes made by others. RuntimeError once the card is gone.
    void Update();

    // Gain at the two ends of a control's raw range, in hundredths of a decibel. It is read from the card's
    // plain control of that name, because simple elements do not report the gain of every kind of control.
    // False when the card does not report it either.
    bool Decibels(const std::string& control, long minimum, long maximum, long& minimumDb, long& maximumDb);

    // Whether there was a change since the last call, found by Update or noted by NoteChange.
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

// Throws a RuntimeError for a negative result of libasound.
void CheckAlsa(int result);

}  // namespace sonavex
