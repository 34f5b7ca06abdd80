#include "ui/widgets/SpectrumPainter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "core/plot/MarkerPlaces.h"
#include "core/plot/PlotTicks.h"
#include "core/text/Decimals.h"
#include "ui/widgets/CurveImage.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr double kLiveWidth = 1.3;
constexpr double kKeptWidth = 1.0;
constexpr double kLiveTint = 0.3;
constexpr double kKeptTint = 0.22;
constexpr double kFlagPoint = 5.0;  // width of the flag's point
constexpr double kFlagPadding = 5.0;
constexpr double kTextGap = 8.0;
constexpr double kReadoutGap = 14.0;

QString TextOf(const std::string& text) {
    return QString::fromStdString(text);
}

double Wide(const QFont& font, const QString& text) {
    return QFontMetricsF(font).horizontalAdvance(text);
}

double YOf(const SpectrumPlot& plot, const QRectF& area, double plotted) {
    return area.bottom() - plot.View().decibels.FractionOf(plotted) * area.height();
}

double XOf(const SpectrumPlot& plot, const QRectF& area, double hertz) {
    return area.left() + plot.View().FractionOfHertz(hertz) * area.width();
}

// The levels at the axis of a plot in dBc are relative to the fundamental.
PlotRange LevelsInDbfs(const SpectrumPlot& plot) {
    const double offset = plot.Plotted(0.0);
    return {plot.View().decibels.low - offset, plot.View().decibels.high - offset};
}

PlotCanvas::Axis AxisOf(PlotRange range, const std::vector<PlotTick>& ticks, bool logarithmic) {
    PlotCanvas::Axis axis{range.low, range.high, {}};
    for (const PlotTick& tick : ticks)
        axis.ticks.push_back(
            {logarithmic ? std::log10(tick.value) : tick.value, TextOf(tick.label), tick.minor});
    return axis;
}

// Rectangles are painted ten times as fast as a dashed pen.
void PaintDashes(QPainter& painter, QLineF line, double width, double dash, double gap) {
    const bool level = line.dy() == 0;
    for (double at = 0; at < line.length(); at += dash + gap) {
        const double length = std::min(dash, line.length() - at);
        const QRectF piece = level ? QRectF(line.x1() + at, line.y1() - width / 2, length, width)
                                   : QRectF(line.x1() - width / 2, line.y1() + at, width, length);
        painter.fillRect(piece, Theme::Current().text);
    }
}

std::optional<double> VisibleNoise(const SpectrumPlot& plot) {
    if (!plot.Shown().noisePerBinDbfs) return std::nullopt;
    const double level = plot.Plotted(*plot.Shown().noisePerBinDbfs);
    const double fraction = plot.View().decibels.FractionOf(level);
    return fraction >= 0 && fraction <= 1 ? std::optional(level) : std::nullopt;
}

void PaintNoise(QPainter& painter, const QRectF& area, const SpectrumPlot& plot, const PlotFonts& fonts) {
    const auto level = VisibleNoise(plot);
    if (!level) return;
    const Theme& theme = Theme::Current();
    const double y = YOf(plot, area, *level);
    PaintDashes(painter, {area.left(), y, area.right(), y}, 1.2, 5, 4);

    const QString text = TextOf(WithDecimals(*level, 1));
    const QFontMetricsF metrics(fonts.strong);
    const double height = metrics.height() + 2;
    const double right = area.left() - kFlagPoint;
    const QRectF flag(right - metrics.horizontalAdvance(text) - 2 * kFlagPadding, y - height / 2,
                      metrics.horizontalAdvance(text) + 2 * kFlagPadding, height);
    QPainterPath shape;
    shape.addRoundedRect(flag, 3, 3);
    shape.addPolygon(QPolygonF({{right - 1, y - 4}, {right + kFlagPoint, y}, {right - 1, y + 4}}));
    shape.setFillRule(Qt::WindingFill);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.text);
    painter.drawPath(shape);
    painter.setPen(theme.card);
    painter.setFont(fonts.strong);
    painter.drawText(flag, Qt::AlignCenter, text);
}

// A number with a border in the colour of the ground, so that it can be read above the grid.
void PaintNumber(QPainter& painter, QPointF bottomCentre, const QString& text, const QFont& font,
                 const QColor& colour) {
    const QFontMetricsF metrics(font);
    const QPointF at = bottomCentre - QPointF(metrics.horizontalAdvance(text) / 2, metrics.descent() / 2);
    painter.setFont(font);
    painter.setPen(Theme::Current().stripe);
    for (const QPointF& offset : {QPointF(1.5, 0), QPointF(-1.5, 0), QPointF(0, 1.5), QPointF(0, -1.5),
                                  QPointF(1, 1), QPointF(-1, 1), QPointF(1, -1), QPointF(-1, -1)})
        painter.drawText(at + offset, text);
    painter.setPen(colour);
    painter.drawText(at, text);
}

void PaintCursor(QPainter& painter, const QRectF& area, const SpectrumPlot& plot) {
    if (!plot.CursorHz()) return;
    const double x = XOf(plot, area, *plot.CursorHz());
    if (x < area.left() || x > area.right()) return;
    const Theme& theme = Theme::Current();
    PaintDashes(painter, {x, area.top(), x, area.bottom()}, 1, 2, 3);
    const auto level = plot.CursorReadout()->plotted;
    if (!level) return;
    const double y = YOf(plot, area, *level);
    if (y < area.top() || y > area.bottom()) return;
    painter.setPen(QPen(theme.text, 1.8));
    painter.setBrush(theme.stripe);
    painter.drawEllipse(QPointF(x, y), 3.2, 3.2);
}

// A row of texts from left to right, as far as they fit.
class TextRow {
public:
    TextRow(QPainter& painter, double left, double right, double baseline)
        : painter_(painter), x_(left), right_(right), baseline_(baseline) {}

    // False if the text and all after it are left out.
    bool Add(const QString& text, const QFont& font, const QColor& colour, double gapAfter) {
        const double width = Wide(font, text);
        if (text.isEmpty()) return !full_;
        full_ = full_ || x_ + width > right_;
        if (full_) return false;
        painter_.setFont(font);
        painter_.setPen(colour);
        painter_.drawText(QPointF(x_, baseline_), text);
        x_ += width + gapAfter;
        return true;
    }

private:
    QPainter& painter_;
    double x_;
    double right_;
    double baseline_;
    bool full_ = false;
};

void PaintReadout(QPainter& painter, const QRectF& area, const SpectrumPlot& plot, const PlotFonts& fonts) {
    const Theme& theme = Theme::Current();
    const double baseline = area.top() - kTextGap - QFontMetricsF(fonts.figure).descent();
    const QString unit = TextOf(plot.UnitText());
    painter.setFont(fonts.quiet);
    painter.setPen(theme.quiet);
    painter.drawText(QPointF(area.left() - kTextGap - Wide(fonts.quiet, unit), baseline), unit);
    const auto readout = plot.CursorReadout();
    if (!readout) return;
    TextRow row(painter, area.left(), area.right(), baseline);
    row.Add("Cursor", fonts.quiet, theme.quiet, kTextGap);
    row.Add(TextOf(readout->hertz), fonts.figure, theme.text, kReadoutGap);
    row.Add(TextOf(readout->dbfs), fonts.figure, theme.text, kReadoutGap);
    row.Add(TextOf(readout->dbc), fonts.figure, theme.text, kReadoutGap);
    QFont name = fonts.plain;
    name.setBold(true);
    const auto add = [&](const std::shared_ptr<const SpectrumTrace>& trace, const std::string& level,
                         const QColor& colour) {
        if (level.empty()) return;
        row.Add(TextOf(trace->name).section(',', 0, 0), name, colour, kTextGap);
        row.Add(TextOf(level), fonts.figure, colour, kReadoutGap);
    };
    add(plot.Kept(), readout->kept, theme.second);
    add(plot.KeptSecond(), readout->keptSecond, theme.third);
}

void PaintConditions(QPainter& painter, const QRectF& area, const SpectrumPlot& plot,
                     const PlotFonts& fonts) {
    const QFontMetricsF metrics(fonts.quiet);
    const double baseline =
        area.bottom() + 2 * (kTextGap / 2 + metrics.height()) + kTextGap / 2 - metrics.descent();
    painter.setFont(fonts.quiet);
    painter.setPen(Theme::Current().quiet);
    const double unitWidth = metrics.horizontalAdvance("Hz");
    painter.drawText(QPointF(area.right() - unitWidth, baseline), "Hz");
    painter.drawText(QPointF(area.left(), baseline),
                     metrics.elidedText(TextOf(plot.Shown().conditions), Qt::ElideRight,
                                        area.width() - unitWidth - kTextGap));
}

}  // namespace

QMargins SpectrumPainter::Margins(const PlotFonts& fonts) {
    const QFontMetricsF quiet(fonts.quiet);
    const double left = Wide(fonts.strong, "-140.6") + 2 * kFlagPadding + kFlagPoint + 1;
    const double top = QFontMetricsF(fonts.figure).height() + kTextGap;
    const double right = Wide(fonts.quiet, "20.005k") / 2;
    const double bottom = 2 * quiet.height() + 1.5 * kTextGap + 1;
    return {static_cast<int>(std::ceil(left)), static_cast<int>(std::ceil(top)),
            static_cast<int>(std::ceil(right)), static_cast<int>(std::ceil(bottom))};
}

PlotCanvas::Axis SpectrumPainter::FrequencyAxis(const SpectrumPlot& plot, double width,
                                                const PlotFonts& fonts) {
    const auto labelWidth = [&](const std::string& label) { return Wide(fonts.quiet, TextOf(label)); };
    const PlotRange range = plot.View().decades;
    return AxisOf(range, FrequencyTicks(range, width, labelWidth), true);
}

PlotCanvas::Axis SpectrumPainter::LevelAxis(const SpectrumPlot& plot, double height, const PlotFonts& fonts) {
    const PlotRange range = plot.View().decibels;
    return AxisOf(range, LevelTicks(range, height, QFontMetricsF(fonts.quiet).height(), VisibleNoise(plot)),
                  false);
}

void SpectrumPainter::PaintGround(QPainter& painter, const QRectF& area, const SpectrumPlot& plot) {
    const double low = std::clamp(XOf(plot, area, plot.Shown().bandLowHz), area.left(), area.right());
    const double high = std::clamp(XOf(plot, area, plot.Shown().bandHighHz), area.left(), area.right());
    const QColor& outside = Theme::Current().outside;
    painter.fillRect(QRectF(area.left(), area.top(), low - area.left(), area.height()), outside);
    painter.fillRect(QRectF(high, area.top(), area.right() - high, area.height()), outside);
}

void SpectrumPainter::Prepare(Painted& painted, const std::shared_ptr<const SpectrumTrace>& trace,
                              PlotRange decades, std::size_t width) {
    if (painted.trace == trace && painted.decades == decades && painted.columns.size() == width) return;
    painted = {trace, decades, {}};
    if (trace) painted.columns = TraceColumns(*trace, decades, width);
}

void SpectrumPainter::PaintTraces(QPainter& painter, const QRectF& area, const SpectrumPlot& plot) {
    const PixelArea pixels(painter, area);
    Prepare(kept_, plot.Kept(), plot.View().decades, pixels.Width());
    Prepare(keptSecond_, plot.KeptSecond(), plot.View().decades, pixels.Width());
    Prepare(live_, plot.Shown().live, plot.View().decades, pixels.Width());
    const Theme& theme = Theme::Current();
    const PlotRange levels = LevelsInDbfs(plot);
    image_.Begin(pixels.Width(), pixels.Height());
    DrawTrace(image_, keptSecond_.columns, levels,
              {PixelColour(theme.third), kKeptWidth * pixels.scale, kKeptTint});
    DrawTrace(image_, kept_.columns, levels,
              {PixelColour(theme.second), kKeptWidth * pixels.scale, kKeptTint});
    DrawTrace(image_, live_.columns, levels,
              {PixelColour(theme.accent), kLiveWidth * pixels.scale, kLiveTint});
    DrawPixels(painter, pixels, image_);
}

void SpectrumPainter::PaintHarmonics(QPainter& painter, const QRectF& area, const SpectrumPlot& plot,
                                     const PlotFonts& fonts) const {
    const Theme& theme = Theme::Current();
    const QFontMetricsF metrics(fonts.strong);
    std::vector<PlotMark> marks;
    for (const SpectrumMarker& marker : plot.Shown().markers)
        marks.push_back({marker.order, marker.hertz, plot.Plotted(marker.levelDbfs)});
    const PlotSize size{area.width(), area.height(), metrics.horizontalAdvance('0'), metrics.height()};
    std::vector<double> curve = HighestCurve(live_.columns, kept_.columns, LevelsInDbfs(plot), area.height());
    const auto second = HighestCurve(keptSecond_.columns, {}, LevelsInDbfs(plot), area.height());
    if (curve.size() < second.size()) curve.resize(second.size(), std::nan(""));
    for (std::size_t i = 0; i < second.size(); ++i) curve[i] = std::fmin(curve[i], second[i]);
    const auto bound = [&](int order) {
        const auto& all = plot.Shown().markers;
        return std::find_if(all.begin(), all.end(), [&](const auto& m) { return m.order == order; })->bound;
    };
    for (const MarkerPlace& place : PlaceMarkers(marks, plot.View(), size, curve)) {
        const bool hollow = bound(place.order);
        if (place.numbered)
            PaintNumber(painter, area.topLeft() + QPointF(place.x, place.numberBottom),
                        QString::number(place.order), fonts.strong, hollow ? theme.quiet : theme.text);
        painter.setPen(hollow ? QPen(theme.text, 1.4) : QPen(Qt::NoPen));
        painter.setBrush(hollow ? theme.stripe : theme.text);
        const double radius = hollow ? 3.0 : 2.6;
        painter.drawEllipse(area.topLeft() + QPointF(place.x, place.y), radius, radius);
    }
}

void SpectrumPainter::PaintMarks(QPainter& painter, const QRectF& area, const SpectrumPlot& plot,
                                 const PlotFonts& fonts) const {
    painter.setRenderHint(QPainter::Antialiasing);
    PaintNoise(painter, area, plot, fonts);
    PaintHarmonics(painter, area, plot, fonts);
    PaintCursor(painter, area, plot);
    PaintReadout(painter, area, plot, fonts);
    PaintConditions(painter, area, plot, fonts);
}

}  // namespace sonavex::ui
