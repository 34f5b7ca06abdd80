#include "ui/widgets/RunPainter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr double kRunTextGap = 8.0;
constexpr double kRunFlagPoint = 5.0;
constexpr double kRunFlagPadding = 5.0;
constexpr double kRunMark = 2.4;      // radius of a measured point
constexpr double kRunVoidMark = 4.0;  // radius of a void point
constexpr double kRunCursorArrow = 5.0;
constexpr double kHeadSwatch = 20.0;
constexpr double kPreviewWidth = 1.2;
constexpr float kPreviewOpacity = 0.55F;

QString RunLabel(const std::string& text) {
    return QString::fromStdString(text);
}

double LabelWidthOf(const QFont& font, const QString& text) {
    return QFontMetricsF(font).horizontalAdvance(text);
}

// Positions and values to pixels.
class RunPixels {
public:
    RunPixels(const QRectF& area, const RunPlot& plot) : area_(area), axes_(plot.Shown()) {}

    double X(double position) const {
        return area_.left() + axes_.across.FractionOf(position) * area_.width();
    }
    double Y(double value, bool atLevelAxis) const {
        const PlotRange& range = atLevelAxis ? axes_.levels : axes_.ratios;
        return area_.bottom() - range.FractionOf(value) * area_.height();
    }
    QPolygonF Line(const RunCurve& curve, bool atLevelAxis) const {
        QPolygonF line;
        for (const RunCurvePoint& point : curve)
            line << QPointF(X(point.position), Y(point.value, atLevelAxis));
        return line;
    }

private:
    QRectF area_;
    const RunPlot::Axes& axes_;
};

bool Marked(RunSeries series) {
    return series == RunSeries::kThd || series == RunSeries::kThdn;
}

// A single point has no line: it is always marked. Bounds have no mark.
void PaintSeries(QPainter& painter, const RunPixels& pixels, const RunPlot& plot, RunSeries series) {
    const QPen pen = RunPainter::LineOf(series);
    for (const RunCurve& curve : plot.Curves(series)) {
        const QPolygonF line = pixels.Line(curve, series == RunSeries::kLevel);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawPolyline(line);
        if (!Marked(series) && curve.size() > 1) continue;
        painter.setPen(Qt::NoPen);
        painter.setBrush(pen.color());
        for (std::size_t i = 0; i < curve.size(); ++i)
            if (!curve[i].bound) painter.drawEllipse(line[static_cast<qsizetype>(i)], kRunMark, kRunMark);
    }
}

void PaintPreview(QPainter& painter, const RunPixels& pixels, const RunPlot& plot, RunSeries series) {
    painter.setPen(RunPainter::PreviewLineOf(series));
    painter.setBrush(Qt::NoBrush);
    for (const RunCurve& curve : plot.Preview(series))
        painter.drawPolyline(pixels.Line(curve, series == RunSeries::kLevel));
}

void PaintKept(QPainter& painter, const RunPixels& pixels, const RunPlot& plot, RunSeries series) {
    painter.setPen(RunPainter::KeptLine(RunPainter::LineOf(series).color()));
    painter.setBrush(Qt::NoBrush);
    for (const RunPlot::BesideCurves& kept : plot.Kept())
        for (const RunCurve& curve : kept.curves[static_cast<std::size_t>(series)])
            painter.drawPolyline(pixels.Line(curve, series == RunSeries::kLevel));
}

// "kept run B", "kept runs B, C"
QString KeptText(const RunPlot& plot) {
    QString text = plot.Kept().size() == 1 ? "kept run " : "kept runs ";
    for (std::size_t i = 0; i < plot.Kept().size(); ++i) {
        if (i > 0) text += ", ";
        text += QChar(plot.Kept()[i].letter);
    }
    return text;
}

void PaintFlag(QPainter& painter, const QRectF& area, double y, const QString& text, const PlotFonts& fonts) {
    const Theme& theme = Theme::Current();
    const QFontMetricsF metrics(fonts.strong);
    const double height = metrics.height() + 2;
    const double width = metrics.horizontalAdvance(text) + 2 * kRunFlagPadding;
    const double right = area.left() - kRunFlagPoint;
    const QRectF flag(right - width, y - height / 2, width, height);
    QPainterPath shape;
    shape.addRoundedRect(flag, 3, 3);
    shape.addPolygon(QPolygonF({{right - 1, y - 4}, {right + kRunFlagPoint, y}, {right - 1, y + 4}}));
    shape.setFillRule(Qt::WindingFill);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.overload);
    painter.drawPath(shape);
    painter.setPen(theme.card);
    painter.setFont(fonts.strong);
    painter.drawText(flag, Qt::AlignCenter, text);
}

void PaintLimits(QPainter& painter, const RunPixels& pixels, const RunPlot& plot) {
    QPen pen(Theme::Current().overload, 2.0);
    pen.setDashPattern({3.5, 2});
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    for (const RunLimitLine& line : plot.Limits())
        painter.drawPolyline(pixels.Line(line.curve, line.atLevelAxis));
}

void PaintFlags(QPainter& painter, const QRectF& area, const RunPlot& plot, const PlotFonts& fonts) {
    const RunPixels pixels(area, plot);
    for (const RunLimitLine& line : plot.Limits())
        if (!line.flag.empty())
            PaintFlag(painter, area, pixels.Y(line.curve.front().value, false), RunLabel(line.flag), fonts);
}

void PaintVerticals(QPainter& painter, const QRectF& area, const RunPlot& plot) {
    const Theme& theme = Theme::Current();
    const RunPixels pixels(area, plot);
    if (plot.CursorPosition()) {
        QPen pen(theme.text, 1.2);
        pen.setDashPattern({1.6, 2.4});
        painter.setPen(pen);
        const double x = pixels.X(*plot.CursorPosition());
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    }
    if (!plot.RunningPosition()) return;
    const double x = pixels.X(*plot.RunningPosition());
    painter.setPen(QPen(theme.accent, 1.6));
    painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.accent);
    painter.drawPolygon(QPolygonF({{x - kRunCursorArrow, area.top() - kRunCursorArrow},
                                   {x + kRunCursorArrow, area.top() - kRunCursorArrow},
                                   {x, area.top() + 1}}));
}

void PaintVoids(QPainter& painter, const QRectF& area, const RunPlot& plot) {
    const Theme& theme = Theme::Current();
    const RunPixels pixels(area, plot);
    painter.setPen(QPen(theme.text, 1.6));
    painter.setBrush(theme.stripe);
    for (const double position : plot.VoidPositions())
        painter.drawEllipse(QPointF(pixels.X(position), area.bottom()), kRunVoidMark, kRunVoidMark);
}

void PaintLevelAxis(QPainter& painter, const QRectF& area, const RunPlot& plot, const PlotFonts& fonts) {
    const QFontMetricsF metrics(fonts.quiet);
    painter.setFont(fonts.quiet);
    painter.setPen(Theme::Current().quiet);
    const RunPixels pixels(area, plot);
    for (const PlotTick& tick : plot.RowTicks(plot.Shown().levels))
        painter.drawText(
            QPointF(area.right() + kRunTextGap, pixels.Y(tick.value, true) + metrics.ascent() / 2 - 1),
            RunLabel(tick.label));
}

// Units of both axes, what a hollow mark is, and which runs are drawn beside the present one.
void PaintHeads(QPainter& painter, const QRectF& area, const RunPlot& plot, const PlotFonts& fonts) {
    const Theme& theme = Theme::Current();
    const QFontMetricsF metrics(fonts.quiet);
    const double baseline = area.top() - kRunTextGap - metrics.descent();
    painter.setFont(fonts.quiet);
    painter.setPen(theme.quiet);
    painter.drawText(QPointF(area.left() - kRunTextGap - metrics.horizontalAdvance("dB"), baseline), "dB");
    painter.drawText(QPointF(area.right() + kRunTextGap, baseline), "dBFS");
    double right = area.right();
    painter.setPen(theme.text);
    const auto paintHead = [&](const QString& text, const QPen& line) {
        right -= metrics.horizontalAdvance(text);
        painter.setPen(theme.text);
        painter.drawText(QPointF(right, baseline), text);
        painter.setPen(line);
        const double y = baseline - metrics.ascent() / 2 + 1;
        right -= kRunTextGap;
        painter.drawLine(QPointF(right - kHeadSwatch, y), QPointF(right, y));
        right -= kHeadSwatch + 2 * kRunTextGap;
    };
    if (!plot.Kept().empty()) paintHead(KeptText(plot), RunPainter::KeptLine(theme.text));
    if (plot.HasPreview()) paintHead("preview", RunPainter::PreviewLineOf(RunSeries::kSecond));
    if (plot.VoidPositions().empty()) return;
    right -= metrics.horizontalAdvance("invalid");
    painter.setPen(theme.text);
    painter.drawText(QPointF(right, baseline), "invalid");
    painter.setPen(QPen(theme.text, 1.6));
    painter.setBrush(theme.card);
    painter.drawEllipse(QPointF(right - 2 * kRunTextGap + kRunVoidMark, baseline - metrics.ascent() / 2 + 1),
                        kRunVoidMark, kRunVoidMark);
}

void PaintFoot(QPainter& painter, const QRectF& area, const RunPlot& plot, const PlotFonts& fonts) {
    const Theme& theme = Theme::Current();
    const QFontMetricsF metrics(fonts.quiet);
    const double baseline =
        area.bottom() + 2 * (kRunTextGap / 2 + metrics.height()) + kRunTextGap / 2 - metrics.descent();
    painter.setFont(fonts.quiet);
    painter.setPen(theme.quiet);
    const double unitWidth = metrics.horizontalAdvance(plot.AcrossUnit());
    painter.drawText(QPointF(area.right() - unitWidth, baseline), plot.AcrossUnit());
    painter.setPen(plot.Alarm() ? theme.overload : theme.quiet);
    // A long text begins below the labels of the axis.
    const QString conditions = RunLabel(plot.Conditions());
    const double end = area.right() - unitWidth - kRunTextGap;
    const double begin = std::clamp(end - metrics.horizontalAdvance(conditions) - 1, 2.0, area.left());
    painter.drawText(QPointF(begin, baseline), metrics.elidedText(conditions, Qt::ElideRight, end - begin));
}

}  // namespace

QMargins RunPainter::Margins(const PlotFonts& fonts) {
    const double left = LabelWidthOf(fonts.strong, "-140.6") + 2 * kRunFlagPadding + kRunFlagPoint + 1;
    const double right = LabelWidthOf(fonts.quiet, "dBFS") + kRunTextGap + 1;
    const QFontMetricsF quiet(fonts.quiet);
    const double top = quiet.height() + 1.5 * kRunTextGap;
    const double bottom = 2 * quiet.height() + 1.5 * kRunTextGap + 1;
    return {static_cast<int>(std::ceil(left)), static_cast<int>(std::ceil(top)),
            static_cast<int>(std::ceil(right)), static_cast<int>(std::ceil(bottom))};
}

QPen RunPainter::LineOf(RunSeries series) {
    const Theme& theme = Theme::Current();
    switch (series) {
        case RunSeries::kThd:
            return {theme.accent, 1.8};
        case RunSeries::kThdn:
            return {theme.second, 1.8};
        case RunSeries::kSecond:
            return {theme.third, 1.4};
        case RunSeries::kThird:
            return {theme.fourth, 1.4};
        case RunSeries::kLevel:
            break;
    }
    QPen level(theme.quiet, 1.6);
    level.setDashPattern({1.2, 1.8});
    return level;
}

QPen RunPainter::PreviewLineOf(RunSeries series) {
    QPen pen = LineOf(series);
    QColor color = pen.color();
    color.setAlphaF(kPreviewOpacity);
    pen.setColor(color);
    pen.setWidthF(kPreviewWidth);
    return pen;
}

// Thin and dashed: the colour shows the quantity, the line the run.
QPen RunPainter::KeptLine(const QColor& colour) {
    QPen pen(colour, 1.0);
    pen.setDashPattern({6, 4});
    return pen;
}

PlotCanvas::Axis RunPainter::AcrossAxis(const RunPlot& plot, double width, const PlotFonts& fonts) {
    const PlotRange range = plot.Shown().across;
    const bool logarithmic = plot.Shown().over == RunAxis::kFrequency;
    PlotCanvas::Axis axis{range.low, range.high, {}};
    const auto labelWidth = [&](const std::string& label) {
        return LabelWidthOf(fonts.quiet, RunLabel(label));
    };
    for (const PlotTick& tick : plot.AcrossTicks(width, labelWidth))
        axis.ticks.push_back(
            {logarithmic ? std::log10(tick.value) : tick.value, RunLabel(tick.label), tick.minor});
    return axis;
}

// The flag of a limit takes the place of labels.
PlotCanvas::Axis RunPainter::RatioAxis(const RunPlot& plot, double height, const PlotFonts& fonts) {
    const PlotRange range = plot.Shown().ratios;
    const double reach = 1.2 * QFontMetricsF(fonts.quiet).height() / height * range.Span();
    PlotCanvas::Axis axis{range.low, range.high, {}};
    for (const PlotTick& tick : plot.RowTicks(range)) {
        const bool hidden =
            std::any_of(plot.Limits().begin(), plot.Limits().end(), [&](const RunLimitLine& line) {
                return !line.flag.empty() && std::fabs(line.curve.front().value - tick.value) < reach;
            });
        axis.ticks.push_back({tick.value, hidden ? QString() : RunLabel(tick.label), false});
    }
    return axis;
}

void RunPainter::PaintGround(QPainter& painter, const QRectF& area, const RunPlot& plot,
                             const PlotFonts& fonts) {
    if (!plot.WithoutHarmonics()) return;
    const Theme& theme = Theme::Current();
    const double left = RunPixels(area, plot).X(*plot.WithoutHarmonics());
    const QRectF outside(left, area.top(), area.right() - left, area.height());
    painter.fillRect(outside, theme.outside);
    const QString text = "no H2\nin band";
    if (LabelWidthOf(fonts.quiet, "in band") + kRunTextGap > outside.width()) return;
    painter.setFont(fonts.quiet);
    painter.setPen(theme.quiet);
    painter.drawText(outside.adjusted(0, 0, 0, -kRunTextGap), Qt::AlignHCenter | Qt::AlignBottom, text);
}

void RunPainter::PaintCurves(QPainter& painter, const QRectF& area, const RunPlot& plot,
                             const PlotFonts& fonts) {
    const RunPixels pixels(area, plot);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.save();
    painter.setClipRect(area);
    PaintLimits(painter, pixels, plot);
    constexpr std::array kBackToFront{RunSeries::kLevel, RunSeries::kThird, RunSeries::kSecond,
                                      RunSeries::kThdn, RunSeries::kThd};
    for (const RunSeries series : kBackToFront)
        if (plot.Visible(series)) {
            PaintKept(painter, pixels, plot, series);
            PaintPreview(painter, pixels, plot, series);
        }
    for (const RunSeries series : kBackToFront)
        if (plot.Visible(series)) PaintSeries(painter, pixels, plot, series);
    painter.restore();
    PaintVerticals(painter, area, plot);
    PaintVoids(painter, area, plot);
    PaintFlags(painter, area, plot, fonts);
    PaintLevelAxis(painter, area, plot, fonts);
    PaintHeads(painter, area, plot, fonts);
    PaintFoot(painter, area, plot, fonts);
}

}  // namespace sonavex::ui
