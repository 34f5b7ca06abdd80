#include <QEvent>
#include <map>

#include "support/QtWait.h"
#include "ui/WindowRig.h"

namespace sonavex {
namespace {

// Painting happens some milliseconds after its event.
constexpr std::chrono::seconds kPaintLimit{2};

// Counts paints of each widget of a window, and layouts.
class Watcher : public QObject {
public:
    Watcher() { QApplication::instance()->installEventFilter(this); }

    int Painted(const char* name) const {
        const auto found = painted_.find(name);
        return found == painted_.end() ? 0 : found->second;
    }
    int All() const {
        int all = 0;
        for (const auto& [name, count] : painted_) all += count;
        return all;
    }
    int Layouts = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++painted_[watched->objectName().toStdString()];
        const auto* const widget = qobject_cast<QWidget*>(watched);
        if (event->type() == QEvent::LayoutRequest && widget != nullptr && widget->layout() != nullptr)
            ++Layouts;
        return false;
    }

private:
    std::map<std::string, int> painted_;
};

class Repaint : public WindowRig {
protected:
    void SetUp() override {
        WindowRig::SetUp();
        rig.form.GeneratorPanel.Controls.Command1.Press();
        Step(60);
        WaitInQt(std::chrono::milliseconds(50));
    }
    MeasurementControls& Meter() { return rig.form.Instrument.Meter.Controls; }
};

TEST_F(Repaint, EqualReadingsPaintNothing) {
    const Watcher watcher;
    for (Label& label : Meter().lbltest) label.SetCaption(std::string(label.Caption()));
    Meter().lblThd.SetCaption(std::string(Meter().lblThd.Caption()));
    Meter().prgADC.SetValue(Meter().prgADC.Value());
    Meter().picLocked.SetBackColor(Meter().picLocked.BackColor());
    WaitInQt(std::chrono::milliseconds(100));
    EXPECT_EQ(watcher.All(), 0);
    EXPECT_EQ(watcher.Layouts, 0);
}

TEST_F(Repaint, AChangedFigurePaintsItselfAlone) {
    for (const char* name : {"lbltest_3", "lblThd", "LblLevel"}) {
        SCOPED_TRACE(name);
        const Watcher watcher;
        Label& label = name == std::string("lblThd")     ? Meter().lblThd
                       : name == std::string("LblLevel") ? Meter().LblLevel
                                                         : Meter().lbltest[3];
        label.SetCaption("77");
        WaitInQt(kPaintLimit, [&] { return watcher.Painted(name) > 0; });
        EXPECT_EQ(Text(name), "77");
        EXPECT_EQ(watcher.Painted(name), 1);
        EXPECT_EQ(watcher.All(), 1);
        EXPECT_EQ(watcher.Layouts, 0);
    }
}

TEST_F(Repaint, AChangedLevelPaintsItsBarAlone) {
    const Watcher watcher;
    Meter().prgADC.SetValue(Meter().prgADC.Value() + 900.0F);
    WaitInQt(kPaintLimit, [&] { return watcher.Painted("prgADC") > 0; });
    EXPECT_EQ(watcher.Painted("prgADC"), 1);
    EXPECT_EQ(watcher.All(), 1);
}

TEST_F(Repaint, ReadingsStandOnTheColourAroundThem) {
    const QImage picture = window.grab().toImage();
    for (const char* name :
         {"lblThd", "lbltest_0", "lbltest_1", "lblDb_7", "LblLevel", "cycleText", "lockWord"}) {
        auto& label = Find<QLabel>(name);
        const QPoint corner = label.mapTo(&window, QPoint(0, 0));
        const QPoint outside = corner + QPoint(-2, label.height() / 2);
        EXPECT_EQ(picture.pixelColor(corner + QPoint(1, 1)), picture.pixelColor(outside)) << name;
    }
}

}  // namespace
}  // namespace sonavex
