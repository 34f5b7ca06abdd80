#include "platform/alsamixer/AlsaElements.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/ports/SoundErrors.h"
#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

constexpr long kBoostHundredthsDb = 2000;

using Channels = std::vector<snd_mixer_selem_channel_id_t>;

// The channels of one half of an element; a single one when all are joined.
Channels ChannelsOf(snd_mixer_elem_t* element, AlsaSide side) {
    Channels channels;
    for (int i = 0; i <= SND_MIXER_SCHN_LAST; ++i) {
        const auto channel = static_cast<snd_mixer_selem_channel_id_t>(i);
        const int has = side == AlsaSide::kPlayback ? snd_mixer_selem_has_playback_channel(element, channel)
                                                    : snd_mixer_selem_has_capture_channel(element, channel);
        if (has != 0) channels.push_back(channel);
    }
    if (channels.empty()) channels.push_back(SND_MIXER_SCHN_MONO);
    return channels;
}

RawRange VolumeRange(snd_mixer_elem_t* element, AlsaSide side) {
    long minimum = 0;
    long maximum = 1;
    const auto get = side == AlsaSide::kPlayback ? snd_mixer_selem_get_playback_volume_range
                                                 : snd_mixer_selem_get_capture_volume_range;
    CheckAlsa(get(element, &minimum, &maximum));
    return {static_cast<std::int32_t>(minimum), static_cast<std::int32_t>(maximum)};
}

// Updates the card before every access, notes writes as changes, and rejects access to an element that the
// driver has removed.
class ElementOfCard : public MixerElement {
public:
    ElementOfCard(AlsaCard card, snd_mixer_elem_t* element) : element_(element), card_(std::move(card)) {}

    std::vector<std::int32_t> Read() final {
        Prepare();
        return Values();
    }
    void Write(const std::vector<std::int32_t>& values) final {
        Prepare();
        Put(values);
        card_->NoteChange();
    }

protected:
    virtual std::vector<std::int32_t> Values() = 0;
    virtual void Put(const std::vector<std::int32_t>& values) = 0;

    AlsaCardMixer& Card() const noexcept { return *card_; }
    bool Present() const noexcept { return card_->Holds(element_); }

    snd_mixer_elem_t* const
        element_;  // NOLINT(readability-identifier-naming): derived classes use it as theirs

private:
    void Prepare() {
        card_->Update();
        if (!Present()) throw RuntimeError(sound_error::kGeneric, "The card no longer has this control.");
    }

    AlsaCard card_;
};

class Volume : public ElementOfCard {
public:
    Volume(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side)
        : ElementOfCard(std::move(card), element),
          side_(side),
          range_(VolumeRange(element, side)),
          channels_(ChannelsOf(element, side)) {}

    RawRange Range() const override { return range_; }

    // The step nearest to a gain, not counting the lowest; the highest step when the card does not report
    // decibels.
    std::int32_t StepNearest(long hundredthsDb) const {
        const auto ask = side_ == AlsaSide::kPlayback ? snd_mixer_selem_ask_playback_vol_dB
                                                      : snd_mixer_selem_ask_capture_vol_dB;
        std::int32_t best = range_.maximum;
        long bestDistance = -1;
        for (std::int32_t step = range_.minimum + 1; Present() && step <= range_.maximum; ++step) {
            long gain = 0;
            if (ask(element_, step, &gain) < 0) return range_.maximum;
            const long distance = std::abs(gain - hundredthsDb);
            if (bestDistance >= 0 && distance >= bestDistance) continue;
            bestDistance = distance;
            best = step;
        }
        return best;
    }

    std::optional<GainRange> Gains() const override {
        if (!Present()) return {};
        long minimum = 0;
        long maximum = 0;
        const auto get = side_ == AlsaSide::kPlayback ? snd_mixer_selem_get_playback_dB_range
                                                      : snd_mixer_selem_get_capture_dB_range;
        if (get(element_, &minimum, &maximum) < 0 && !PlainDecibels(minimum, maximum)) return {};
        if (minimum >= maximum) return {};
        return GainRange{static_cast<double>(minimum) / 100.0, static_cast<double>(maximum) / 100.0};
    }

protected:
    std::vector<std::int32_t> Values() override {
        const auto get = side_ == AlsaSide::kPlayback ? snd_mixer_selem_get_playback_volume
                                                      : snd_mixer_selem_get_capture_volume;
        std::vector<std::int32_t> values;
        for (const snd_mixer_selem_channel_id_t channel : channels_) {
            long value = 0;
            CheckAlsa(get(element_, channel, &value));
            values.push_back(static_cast<std::int32_t>(value));
        }
        return values;
    }
    void Put(const std::vector<std::int32_t>& values) override {
        const auto set = side_ == AlsaSide::kPlayback ? snd_mixer_selem_set_playback_volume
                                                      : snd_mixer_selem_set_capture_volume;
        for (std::size_t i = 0; i < channels_.size(); ++i)
            CheckAlsa(set(element_, channels_[i], values.at(i)));
    }

private:
    bool PlainDecibels(long& minimum, long& maximum) const {
        const std::string name = snd_mixer_selem_get_name(element_);
        return Card().Decibels("Tone Control - " + name, range_.minimum, range_.maximum, minimum, maximum) ||
               Card().Decibels(name, range_.minimum, range_.maximum, minimum, maximum);
    }

    AlsaSide side_;
    RawRange range_;
    Channels channels_;
};

class Switch : public ElementOfCard {
public:
    Switch(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side, bool inverted)
        : ElementOfCard(std::move(card), element),
          side_(side),
          inverted_(inverted),
          channels_(ChannelsOf(element, side)) {}

    RawRange Range() const override { return {0, 1}; }

protected:
    std::vector<std::int32_t> Values() override {
        const auto get = side_ == AlsaSide::kPlayback ? snd_mixer_selem_get_playback_switch
                                                      : snd_mixer_selem_get_capture_switch;
        std::vector<std::int32_t> values;
        for (const snd_mixer_selem_channel_id_t channel : channels_) {
            int on = 0;
            CheckAlsa(get(element_, channel, &on));
            values.push_back(static_cast<std::int32_t>((on != 0) != inverted_));
        }
        return values;
    }
    void Put(const std::vector<std::int32_t>& values) override {
        const auto set = side_ == AlsaSide::kPlayback ? snd_mixer_selem_set_playback_switch
                                                      : snd_mixer_selem_set_capture_switch;
        for (std::size_t i = 0; i < channels_.size(); ++i)
            CheckAlsa(set(element_, channels_[i], static_cast<int>((values.at(i) != 0) != inverted_)));
    }

private:
    AlsaSide side_;
    bool inverted_;
    Channels channels_;
};

class Boost : public MixerElement {
public:
    Boost(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side) : steps_(std::move(card), element, side) {}

    RawRange Range() const override { return {0, 1}; }
    std::vector<std::int32_t> Read() override {
        std::vector<std::int32_t> values = steps_.Read();
        for (std::int32_t& value : values) value = static_cast<std::int32_t>(value > steps_.Range().minimum);
        return values;
    }
    // A channel that is on keeps its step.
    void Write(const std::vector<std::int32_t>& values) override {
        const RawRange range = steps_.Range();
        std::vector<std::int32_t> steps = steps_.Read();
        for (std::size_t i = 0; i < steps.size(); ++i) {
            if (values.at(i) == 0) steps[i] = range.minimum;
            if (values.at(i) != 0 && steps[i] == range.minimum)
                steps[i] = steps_.StepNearest(kBoostHundredthsDb);
        }
        steps_.Write(steps);
    }

private:
    Volume steps_;
};

class Choice : public ElementOfCard {
public:
    Choice(AlsaCard card, snd_mixer_elem_t* element)
        : ElementOfCard(std::move(card), element), range_{0, snd_mixer_selem_get_enum_items(element) - 1} {}
    RawRange Range() const override { return range_; }

protected:
    std::vector<std::int32_t> Values() override {
        unsigned item = 0;
        CheckAlsa(snd_mixer_selem_get_enum_item(element_, SND_MIXER_SCHN_MONO, &item));
        return {static_cast<std::int32_t>(item)};
    }
    void Put(const std::vector<std::int32_t>& values) override {
        CheckAlsa(snd_mixer_selem_set_enum_item(element_, SND_MIXER_SCHN_MONO,
                                                static_cast<unsigned>(values.at(0))));
    }

private:
    RawRange range_;
};

class AnyItem : public MixerElement {
public:
    AnyItem(AlsaCard card, snd_mixer_elem_t* element, std::vector<std::int32_t> items)
        : choice_(std::move(card), element), items_(std::move(items)) {}
    RawRange Range() const override { return {0, 1}; }
    std::vector<std::int32_t> Read() override {
        const std::int32_t selected = choice_.Read().front();
        return {static_cast<std::int32_t>(std::find(items_.begin(), items_.end(), selected) != items_.end())};
    }
    void Write(const std::vector<std::int32_t>& values) override {
        if (values.at(0) != 0 && Read().front() == 0) choice_.Write({items_.front()});
    }

private:
    Choice choice_;
    std::vector<std::int32_t> items_;
};

class InputSwitch : public MixerElement {
public:
    InputSwitch(const AlsaCard& card, snd_mixer_elem_t* element, snd_mixer_elem_t* other)
        : switch_(card, element, AlsaSide::kCapture, false), other_(card, other, AlsaSide::kCapture, false) {}
    RawRange Range() const override { return {0, 1}; }
    std::vector<std::int32_t> Read() override {
        const std::vector<std::int32_t> values = switch_.Read();
        return {*std::min_element(values.begin(), values.end())};
    }
    void Write(const std::vector<std::int32_t>& values) override {
        if (values.at(0) == 0) return;
        switch_.Write(std::vector<std::int32_t>(switch_.Read().size(), 1));
        other_.Write(std::vector<std::int32_t>(other_.Read().size(), 0));
    }

private:
    Switch switch_;
    Switch other_;
};

}  // namespace

bool HasVolume(snd_mixer_elem_t* element, AlsaSide side) {
    return (side == AlsaSide::kPlayback ? snd_mixer_selem_has_playback_volume(element)
                                        : snd_mixer_selem_has_capture_volume(element)) != 0;
}

bool HasSwitch(snd_mixer_elem_t* element, AlsaSide side) {
    return (side == AlsaSide::kPlayback ? snd_mixer_selem_has_playback_switch(element)
                                        : snd_mixer_selem_has_capture_switch(element)) != 0;
}

std::unique_ptr<MixerElement> AlsaVolume(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side) {
    return std::make_unique<Volume>(std::move(card), element, side);
}

std::unique_ptr<MixerElement> AlsaSwitch(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side,
                                         bool inverted) {
    return std::make_unique<Switch>(std::move(card), element, side, inverted);
}

std::unique_ptr<MixerElement> AlsaBoost(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side) {
    return std::make_unique<Boost>(std::move(card), element, side);
}

std::vector<std::string> AlsaItems(snd_mixer_elem_t* element) {
    std::vector<std::string> items;
    const int count = snd_mixer_selem_get_enum_items(element);
    for (int item = 0; item < count; ++item) {
        std::array<char, 64> name{};
        static_cast<void>(snd_mixer_selem_get_enum_item_name(element, static_cast<unsigned>(item),
                                                             name.size() - 1, name.data()));
        items.emplace_back(name.data());
    }
    return items;
}

std::unique_ptr<MixerElement> AlsaChoice(AlsaCard card, snd_mixer_elem_t* element) {
    return std::make_unique<Choice>(std::move(card), element);
}

std::unique_ptr<MixerElement> AlsaAnyItem(AlsaCard card, snd_mixer_elem_t* element,
                                          std::vector<std::int32_t> items) {
    return std::make_unique<AnyItem>(std::move(card), element, std::move(items));
}

std::unique_ptr<MixerElement> AlsaInputSwitch(const AlsaCard& card, snd_mixer_elem_t* element,
                                              snd_mixer_elem_t* other) {
    return std::make_unique<InputSwitch>(card, element, other);
}

}  // namespace sonavex
