#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QImage>
#include <QTest>
#include <QWheelEvent>

#include "support/PlottedLoop.h"
#include "support/QtWait.h"
#include "support/World.h"
#include "ui/Binder.h"
#include "ui/widgets/Theme.h"

namespace sonavex {
namespace {

constexpr std::chrono::seconds kPlotLimit{2};

// Counts the paints of the widgets inside another.
class InnerPaints : public QObject {
public:
    explicit InnerPaints(QWidget& outer) : outer_(outer) {
        QApplication::instance()->installEventFilter(this);
    }
    int Count = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* const widget = qobject_cast<QWidget*>(watched);
        if (event->type() == QEvent::Paint && widget != nullptr && outer_.isAncestorOf(widget) &&
            QByteArray(watched->metaObject()->className()) == "QCustomPlot")
            ++Count;
        return false;
    }

private:
    QWidget& outer_;
};

class PlotViews : public testing::Test {
protected:
    PlotViews() {
        binder.Bind(view, plot);
        binder.Bind(waves, wavePlot);
        view.resize(582, 410);
        waves.resize(582, 140);
        plot.Show(loop.Data());
        plot.Keep(PlottedLoop(-130.6, 8).Trace("A, 10:42, gain +20 dB"));
        wavePlot.Show(loop.Wave());
        view.show();
        waves.show();
        WaitInQt(std::chrono::milliseconds(100));
    }

    static void Wheel(QWidget& widget, QPointF at, int angle,
                      Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, angle}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&widget, &event);
        Settle();
    }
    QImage Picture(QWidget& widget) {
        WaitInQt(std::chrono::milliseconds(100));
        return widget.grab().toImage();
    }
    // Pixels of the plot for a frequency and a level.
    QPoint At(double hertz, double level) const {
        const QRectF area = Area();
        const double x = plot.View().FractionOfHertz(hertz) * area.width();
        const double y = (1 - plot.View().decibels.FractionOf(level)) * area.height();
        return QPoint(static_cast<int>(area.left() + x), static_cast<int>(area.top() + y));
    }
    QRectF Area() const {
        return QRectF(view.rect()).marginsRemoved(ui::SpectrumPainter::Margins(ui::PlotFonts(view.font())));
    }
    // Whether a text or line touches the edge of the picture.
    static bool EdgeTouched(const QImage& picture) {
        const QRgb ground = ui::Theme::Current().card.rgb();
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixel(x, 0) != ground || picture.pixel(x, picture.height() - 1) != ground)
                return true;
        for (int y = 0; y < picture.height(); ++y)
            if (picture.pixel(0, y) != ground || picture.pixel(picture.width() - 1, y) != ground) return true;
        return false;
    }

    World world;
    HandlerGuard guard{world.dialogs, world.errorLog, world.ending};
    PlottedLoop loop;
    SpectrumPlot plot;
    WavePlot wavePlot;
    ui::SpectrumView view;
    ui::WaveView waves;
    ui::Binder binder{guard, {}};
};

TEST_F(PlotViews, ShowTheTracesAtTheirPlaces) {
    const QImage picture = Picture(view);
    const ui::Theme& theme = ui::Theme::Current();
    EXPECT_EQ(picture.pixelColor(At(999.756, -30)), theme.accent);
    EXPECT_EQ(picture.pixelColor(At(999.756, -30) - QPoint(4, 0)), theme.stripe);
    EXPECT_EQ(picture.pixelColor(At(3005, -105) - QPoint(5, 0)), theme.stripe);
    EXPECT_EQ(picture.pixelColor(At(15, -90)), theme.outside);
    EXPECT_EQ(picture.pixelColor(At(22000, -90)), theme.outside);
    // The marks of harmonics are filled, those of bounds hollow.
    EXPECT_EQ(picture.pixelColor(At(1999.5, -105.01)), theme.text);
    EXPECT_EQ(picture.pixelColor(At(7998, -141.7)), theme.stripe);
}

TEST_F(PlotViews, AVoidPlotHasAxesOnly) {
    plot.Show({});
    plot.Keep(nullptr);
    wavePlot.Show(nullptr);
    const QImage picture = Picture(view);
    const ui::Theme& theme = ui::Theme::Current();
    for (const double level : {-30.0, -90.0, -141.0})
        EXPECT_EQ(picture.pixelColor(At(1050, level)), theme.stripe) << level;
    EXPECT_EQ(picture.pixelColor(Area().topLeft().toPoint() + QPoint(0, 100)), theme.border);
}

TEST_F(PlotViews, NoTextIsCutInAnyState) {
    const auto check = [&](const char* state) {
        SCOPED_TRACE(state);
        for (const QSize size : {QSize(582, 410), QSize(334, 360)}) {
            view.resize(size);
            waves.resize(size.width(), 140);
            EXPECT_FALSE(EdgeTouched(Picture(view))) << size.width();
            EXPECT_FALSE(EdgeTouched(Picture(waves))) << size.width();
        }
    };
    check("everything");
    plot.UserClicks(0.5, 0.1);
    plot.SetUnit(PlotUnit::kDbc);
    wavePlot.SetPeriods(5);
    check("cursor");
    plot.UserZoomsFrequency(plot.View().FractionOfHertz(20000), 100);
    plot.UserZoomsLevel(0.1, 100);
    check("magnified");
    plot.Show({});
    plot.Keep(nullptr);
    wavePlot.Show(nullptr);
    check("void");
}

TEST_F(PlotViews, TheImageIsSharpAtEveryScale) {
    for (const double scale : {1.0, 1.25, 2.0}) {
        QImage picture((QSizeF(view.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
        view.PaintOn(picture, view.size(), scale);
        const QPoint spike = (QPointF(At(999.756, -30)) * scale).toPoint();
        int accent = 0;
        int mixed = 0;
        for (int x = spike.x() - 12; x <= spike.x() + 12; ++x) {
            const QColor colour = picture.pixelColor(x, spike.y());
            accent += colour == ui::Theme::Current().accent;
            mixed += colour != ui::Theme::Current().accent && colour != ui::Theme::Current().stripe;
        }
        EXPECT_GE(accent, 1) << scale;
        EXPECT_LE(mixed, 3) << scale;  // the grid line of 1 kHz
    }
}

TEST_F(PlotViews, TheWheelZoomsAtThePointer) {
    const QPointF at = At(5000, -100);
    Wheel(view, at, 240);
    EXPECT_LT(plot.View().decades.Span(), 2.5);
    EXPECT_NEAR(At(5000, -100).x(), at.x(), 1);
    EXPECT_EQ(plot.View().decibels, (PlotRange{-180, 0}));
    Wheel(view, at, 120, Qt::ControlModifier);
    EXPECT_NEAR(plot.View().decibels.Span(), 144, 1e-9);
    Wheel(view, {5, at.y()}, -120);
    EXPECT_NEAR(plot.View().decibels.Span(), 180, 1e-9);
    // A touchpad sends parts of a step.
    for (int i = 0; i < 8; ++i) Wheel(view, at, -30);
    EXPECT_NEAR(plot.View().decades.Span(), std::log10(2400.0), 1e-9);
}

TEST_F(PlotViews, DraggingMovesAndAClickPlacesTheCursor) {
    Wheel(view, At(1000, -100), 600);
    const double before = plot.View().HertzAt(0.5);
    const QPoint from = At(1000, -100);
    QTest::mousePress(&view, Qt::LeftButton, {}, from);
    QTest::mouseMove(&view, from + QPoint(30, 0));
    QTest::mouseMove(&view, from + QPoint(60, 0));
    QTest::mouseRelease(&view, Qt::LeftButton, {}, from + QPoint(60, 0));
    EXPECT_NEAR(plot.View().HertzAt(0.5 + 60 / Area().width()), before, 0.01 * before);
    EXPECT_FALSE(plot.CursorHz());
    QTest::mouseClick(&view, Qt::LeftButton, {}, At(2010, -60));
    EXPECT_NEAR(plot.CursorHz().value(), 2 * 999.756, 0.01);
    // Clicks beside the plot and with other buttons do nothing.
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(3, 3));
    QTest::mouseClick(&view, Qt::RightButton, {}, At(1000, -60));
    EXPECT_NEAR(plot.CursorHz().value(), 2 * 999.756, 0.01);
}

TEST_F(PlotViews, KeysMoveTheCursorAndZoom) {
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_NEAR(plot.CursorHz().value(), 999.756, 0.001);
    QTest::keyClick(&view, Qt::Key_Left);
    EXPECT_NEAR(plot.CursorHz().value(), 999.023, 0.001);
    QTest::keyClick(&view, Qt::Key_Right, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_NEAR(plot.CursorHz().value(), 1999.512, 0.001);
    const double span = plot.View().decades.Span();
    QTest::keyClick(&view, Qt::Key_Plus);
    EXPECT_NEAR(plot.View().decades.Span(), span / 1.25, 1e-9);
    QTest::keyClick(&view, Qt::Key_Minus);
    EXPECT_NEAR(plot.View().decades.Span(), span, 1e-9);
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_FALSE(plot.CursorHz());
}

TEST_F(PlotViews, ScreenReadersGetTheDescription) {
    QTest::keyClick(&view, Qt::Key_Right);
    ASSERT_TRUE(WaitInQt(kPlotLimit, [&] {
        return view.accessibleDescription() == QString::fromStdString(plot.Description());
    }));
    EXPECT_TRUE(view.accessibleDescription().contains("Cursor 999.76 Hz, -1.0 dBFS"));
    EXPECT_EQ(waves.accessibleDescription(), QString::fromStdString(wavePlot.Description()));
}

TEST_F(PlotViews, ReadingsArePaintedAtMostFifteenTimesPerSecond) {
    WaitInQt(std::chrono::milliseconds(100));
    const InnerPaints paints(view);
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < 600) {
        plot.Show(loop.Data());
        WaitInQt(std::chrono::milliseconds(5));
    }
    EXPECT_GE(paints.Count, 2);
    EXPECT_LE(paints.Count, 1 + static_cast<int>(time.elapsed() / 66));
}

TEST_F(PlotViews, TheLastReadingIsShown) {
    for (int i = 0; i < 3; ++i) {
        plot.Show(loop.Data());
        Settle();
    }
    plot.Show({});
    plot.Keep(nullptr);
    EXPECT_TRUE(WaitInQt(kPlotLimit, [&] {
        return view.grab().toImage().pixelColor(At(999.756, -30)) != ui::Theme::Current().accent;
    }));
}

TEST_F(PlotViews, TheFocusIsVisible) {
    const auto frame = [&] { return Picture(view).pixelColor(Area().topLeft().toPoint() + QPoint(0, 100)); };
    view.activateWindow();
    view.setFocus();
    EXPECT_EQ(frame(), ui::Theme::Current().accent);
    view.clearFocus();
    EXPECT_EQ(frame(), ui::Theme::Current().border);
}

}  // namespace
}  // namespace sonavex
