#include "ui/GeneratorWords.h"

#include <QObject>
#include <algorithm>
#include <span>

namespace sonavex::ui {
namespace {

QString State(const Generator& generator) {
    if (!generator.GeneratorRunning) return QObject::tr("Generator stopped");
    if (generator.NumTones == 1) return QObject::tr("Generator playing");
    return QObject::tr("Generator playing %1 tones").arg(generator.NumTones);
}

// A looping sweep never ends.
bool Ended(const ToneRecord& tone) {
    return !tone.Loop && !Generator::UnderWay(tone);
}

QString SweepOfOne(const ToneRecord& tone) {
    const QString words = Ended(tone) ? QObject::tr("sweep ended at %1 Hz") : QObject::tr("sweeping, %1 Hz");
    return words.arg(tone.Frequency, 0, 'f', 0);
}

QString SweepsOfMany(qsizetype underWay, qsizetype ended) {
    if (ended == 0) return QObject::tr("%1 tones sweeping").arg(underWay);
    if (underWay == 0) return QObject::tr("%1 sweeps ended").arg(ended);
    return QObject::tr("%1 sweeping, %2 ended").arg(underWay).arg(ended);
}

QString Detail(const Generator& generator) {
    const auto count = static_cast<std::size_t>(std::clamp(generator.NumTones, 0, kToneRecords));
    const std::span<const ToneRecord> tones(generator.Tones.data(), count);
    const auto sweeps = [](const ToneRecord& tone) { return tone.Sweep; };
    const auto swept = std::count_if(tones.begin(), tones.end(), sweeps);
    if (swept == 0) return {};
    if (swept == 1) return SweepOfOne(*std::find_if(tones.begin(), tones.end(), sweeps));
    const auto ended = std::count_if(tones.begin(), tones.end(),
                                     [](const ToneRecord& tone) { return tone.Sweep && Ended(tone); });
    return SweepsOfMany(swept - ended, ended);
}

}  // namespace

GeneratorWords GeneratorWords::Of(const Generator& generator, bool clockRuns) {
    return {State(generator), generator.GeneratorRunning && clockRuns ? Detail(generator) : QString()};
}

}  // namespace sonavex::ui
