#include "ui/widgets/WaveView.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QPainter>
#include <QResizeEvent>
#include <cmath>
#include <utility>

#include "core/plot/PlotTicks.h"
#include "core/plot/WaveColumns.h"
#include "ui/widgets/CurveImage.h"
#include "ui/widgets/SpectrumPainter.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr double kThickLine = 1.8;
constexpr double kThinLine = 0.9;
constexpr double kThinOpacity = 0.55;
constexpr double kTitleGap = 8.0;

PlotCanvas::Axis TimeAxis(double seconds) {
    PlotCanvas::Axis axis{0, seconds, {}};
    for (const PlotTick& tick : TimeTicks(seconds))
        axis.ticks.push_back({tick.value, QString::fromStdString(tick.label), false});
    return axis;
}

// From -1 to 1 of a full scale, with the unit at the middle.
PlotCanvas::Axis ScaleAxis(double fullScale) {
    const WavePlot::AxisTexts texts = WavePlot::TextsOf(fullScale);
    const QString text = QString::fromStdString(texts.value);
    return {-1, 1, {{-1, "-" + text}, {0, QString::fromUtf8(texts.unit)}, {1, text}}};
}

}  // namespace

WaveView::WaveView(QWidget* parent)
    : QWidget(parent), signal_(this), residual_(this), fonts_(font()), schedule_([this] { Paint(); }) {
    setAccessibleName("Waveform and residual");
    signal_.PaintCurves = [this](QPainter& painter, const QRectF& area) { PaintSignal(painter, area); };
    residual_.PaintCurves = [this](QPainter& painter, const QRectF& area) { PaintResidual(painter, area); };
    ApplyLook();
}

void WaveView::Show(const WavePlot& plot) {
    plot_ = &plot;
    schedule_.Request(false);
}

void WaveView::Paint() {
    if (plot_ == nullptr) return;
    const QString description = QString::fromStdString(plot_->Description());
    if (description != accessibleDescription()) setAccessibleDescription(description);
    const PlotCanvas::Axis time = TimeAxis(plot_->Seconds());
    ShowAxes(signal_, time, ScaleAxis(plot_->SignalScale()));
    ShowAxes(residual_, time, ScaleAxis(plot_->ResidualScale()));
}

void WaveView::ShowAxes(PlotCanvas& canvas, const PlotCanvas::Axis& time, const PlotCanvas::Axis& scale) {
    const bool changed = canvas.SetAxes(time, scale, fonts_.quiet);
    canvas.Repaint(changed ? PlotCanvas::Part::kAll : PlotCanvas::Part::kCurves);
}

void WaveView::PaintAll() {
    Paint();
    for (PlotCanvas* canvas : {&signal_, &residual_}) canvas->Repaint(PlotCanvas::Part::kAll);
}

// Both plots are as wide and show the same columns.
const WaveColumns& WaveView::ColumnsFor(std::size_t width) {
    const Key key{plot_->Shown(), plot_->Periods(), width};
    if (std::exchange(key_, key) != key) columns_ = MakeWaveColumns(*key.record, key.periods, width);
    return columns_;
}

void WaveView::PaintSignal(QPainter& painter, const QRectF& area) {
    if (plot_ == nullptr) return;
    PaintTitle(painter, area, "Signal", QString::fromStdString(plot_->SignalScaleText()));
    if (!plot_->Shown()) return;
    const PixelArea pixels(painter, area);
    const WaveColumns& columns = ColumnsFor(pixels.Width());
    image_.Begin(pixels.Width(), pixels.Height());
    DrawWave(image_, columns.signal, plot_->SignalScale(), PixelColour(Theme::Current().accent),
             kThickLine * pixels.scale);
    DrawPixels(painter, pixels, image_);
}

void WaveView::PaintResidual(QPainter& painter, const QRectF& area) {
    if (plot_ == nullptr) return;
    PaintTitle(painter, area, "Residual", QString::fromStdString(plot_->ResidualScaleText()));
    if (!plot_->Shown()) return;
    const PixelArea pixels(painter, area);
    const WaveColumns& columns = ColumnsFor(pixels.Width());
    image_.Begin(pixels.Width(), pixels.Height());
    const double scale = plot_->ResidualScale();
    DrawWave(image_, columns.captured, scale, PixelColour(Theme::Current().accent), kThinLine * pixels.scale,
             kThinOpacity);
    DrawWave(image_, columns.harmonics, scale, PixelColour(Theme::Current().text), kThickLine * pixels.scale);
    DrawPixels(painter, pixels, image_);
}

void WaveView::PaintTitle(QPainter& painter, const QRectF& area, const QString& title,
                          const QString& scale) const {
    const QFontMetricsF metrics(fonts_.quiet);
    const double baseline = area.top() - kTitleGap + metrics.descent() / 2;
    painter.setFont(fonts_.quiet);
    painter.setPen(Theme::Current().text);
    painter.drawText(QPointF(area.left(), baseline), title);
    const double left = area.left() + metrics.horizontalAdvance(title) + kTitleGap;
    painter.setPen(Theme::Current().quiet);
    const bool fits = left + metrics.horizontalAdvance(scale) <= area.right() + kTitleGap;
    painter.drawText(QPointF(left, baseline), fits ? scale : scale.section(" = ", 0, 0));
}

void WaveView::ApplyLook() {
    const Theme& theme = Theme::Current();
    fonts_ = PlotFonts(font());
    const QFontMetricsF metrics(fonts_.quiet);
    // The plots are below those of the spectrum, so they have the same margins at the sides.
    QMargins margins = SpectrumPainter::Margins(fonts_);
    margins.setTop(static_cast<int>(std::ceil(metrics.height() + kTitleGap)));
    margins.setBottom(static_cast<int>(std::ceil(metrics.height() + kTitleGap)));
    for (PlotCanvas* canvas : {&signal_, &residual_}) {
        canvas->SetMargins(margins);
        canvas->SetColours(theme.card, theme.stripe, theme.border, theme.border, theme.quiet);
    }
    PaintAll();
}

QSize WaveView::minimumSizeHint() const {
    return {240, 120};
}

void WaveView::resizeEvent(QResizeEvent* event) {
    const int half = width() / 2;
    signal_.setGeometry(0, 0, half, height());
    residual_.setGeometry(width() - half, 0, half, height());
    PaintAll();
    QWidget::resizeEvent(event);
}

void WaveView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange ||
        event->type() == QEvent::StyleChange)
        ApplyLook();
}

}  // namespace sonavex::ui
