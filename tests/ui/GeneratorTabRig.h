#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

#include "ui/WindowRig.h"
#include "ui/widgets/FrequencySlider.h"

namespace sonavex {

// The real window and form on the stepped card at 32000 Hz, with the generator's tab in front.
class GeneratorTabRig : public WindowRig {
protected:
    void SetUp() override {
        WindowRig::SetUp();
        rig.form.TabStrip1.SetIndex(1);
        Settle();
    }

    void Advance(int ms) {
        rig.loop.Advance(std::chrono::milliseconds(ms));
        // The window polls a sweep in real time.
        WaitInQt(std::chrono::milliseconds(150));
        Settle();
    }

    QString Box(const char* box) { return Find<QLineEdit>(box).text(); }
    void Click(const char* button) {
        QTest::mouseClick(&Find<QPushButton>(button), Qt::LeftButton);
        Settle();
    }
    void Key(const char* widget, Qt::Key key) {
        QTest::keyClick(&Find<QWidget>(widget), key);
        Settle();
    }
    // Replaces a box's text as a user does, key by key.
    void Type(const char* name, const QString& text) {
        auto& box = Find<QLineEdit>(name);
        box.setFocus();
        box.selectAll();
        QTest::keyClick(&box, Qt::Key_Delete);
        QTest::keyClicks(&box, text);
        Settle();
    }
    void TypeAndReturn(const char* name, const QString& text) {
        Type(name, text);
        Key(name, Qt::Key_Return);
    }
    // Eighths of a degree; a notch of a mouse wheel is 120.
    void Wheel(const char* name, int angle) {
        auto& widget = Find<QWidget>(name);
        const QPointF middle = widget.rect().center();
        QWheelEvent event(middle, widget.mapToGlobal(middle), QPoint(), QPoint(0, angle), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&widget, &event);
        Settle();
    }
    // The middle of the slider's handle.
    QPoint Handle(const QSlider& slider) const {
        constexpr int kHalfHandle = 8;
        const double fraction = static_cast<double>(slider.value() - slider.minimum()) /
                                static_cast<double>(slider.maximum() - slider.minimum());
        return {kHalfHandle + qRound(fraction * (slider.width() - 2 * kHalfHandle)), slider.height() / 2};
    }

    SignalControls& Signal() { return rig.form.GeneratorPanel.Controls; }
    MemoryControls& Memory() { return rig.form.GeneratorPanel.MemoryControls; }
    ToneRecord& Tone() { return rig.form.Instrument.Meter.Generator.Tones[0]; }
    std::string Stored(const char* key) { return rig.store.Get("Signal Generator", key, "none"); }
};

}  // namespace sonavex
