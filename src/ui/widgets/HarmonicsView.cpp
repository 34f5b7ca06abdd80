#include "ui/widgets/HarmonicsView.h"

#include <QFontDatabase>
#include <QPainter>
#include <QStringList>
#include <utility>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kRowPadding = 10;
constexpr int kCellIndent = 7;
constexpr int kCellGap = 8;
constexpr int kBarWidth = 48;
constexpr double kBarHeight = 8.0;
constexpr double kLevelScale = 1.12;
constexpr double kSmallScale = 0.92;

QFont FixedFont(double scale, bool bold) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setBold(bold);
    return font;
}

void PaintBar(QPainter& painter, const QRectF& track, double fraction) {
    const Theme& theme = Theme::Current();
    const double radius = track.height() / 2.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.track);
    painter.drawRoundedRect(track, radius, radius);
    if (fraction <= 0.0) return;
    painter.setBrush(theme.accent);
    painter.drawRoundedRect(
        QRectF(track.topLeft(), QSizeF(std::max(track.width() * fraction, track.height()), track.height())),
        radius, radius);
}

}  // namespace

// Right edges of the texts, and the left edge of the bar.
struct HarmonicsView::Columns {
    int level;
    int spread;
    int phase;
    int bar;
};

// Made once for a painting, because making a font takes longer than drawing a text.
struct HarmonicsView::Fonts {
    explicit Fonts(const QFont& base) : names(base), quiet(QuietFont(base)) {}

    int RowHeight() const { return QFontMetrics(level).height() + kRowPadding - 1; }

    QFont names;
    QFont quiet;
    QFont level = FixedFont(kLevelScale, true);
    QFont bound = FixedFont(kLevelScale, false);
    QFont phase = FixedFont(1.0, false);
    QFont spread = FixedFont(kSmallScale, false);
};

HarmonicsView::HarmonicsView(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void HarmonicsView::SetRows(std::vector<Row> rows) {
    if (rows == rows_) return;
    const bool resized = rows.size() != rows_.size();
    rows_ = std::move(rows);
    setAccessibleDescription(Spoken());
    if (resized) updateGeometry();
    update();
}

QString HarmonicsView::Spoken() const {
    QStringList lines;
    for (const Row& row : rows_)
        lines.append(row.bound
                         ? tr("%1 at most %2 dBc").arg(row.order, QString(row.level).remove(u'≤').trimmed())
                         : tr("%1 %2 dBc, phase %3").arg(row.order, row.level, row.phase));
    return lines.join(u'\n');
}

HarmonicsView::Columns HarmonicsView::Places(const Fonts& fonts) const {
    Columns columns{};
    columns.bar = width() - kCellIndent - kBarWidth;
    columns.phase = columns.bar - kCellGap - 4;
    columns.spread =
        columns.phase - QFontMetrics(fonts.phase).horizontalAdvance(QStringLiteral("-180°")) - kCellGap - 6;
    columns.level = columns.spread - QFontMetrics(fonts.spread).horizontalAdvance("00.00") - kCellGap - 8;
    return columns;
}

QSize HarmonicsView::sizeHint() const {
    const Fonts fonts(font());
    const int level = QFontMetrics(fonts.level).horizontalAdvance("-000.00");
    const int order = fontMetrics().horizontalAdvance("H99");
    const int used = width() - Places(fonts).level;
    return {kCellIndent + order + kCellGap + level + used,
            static_cast<int>(rows_.size() + 1) * fonts.RowHeight()};
}

void HarmonicsView::PaintHead(QPainter& painter, const Fonts& fonts, const Columns& columns) const {
    painter.setFont(fonts.quiet);
    painter.setPen(Theme::Current().quiet);
    const int height = fonts.RowHeight();
    painter.drawText(QRect(kCellIndent, 0, width(), height), Qt::AlignVCenter, tr("Order"));
    const std::pair<int, QString> heads[] = {
        {columns.level, "dBc"}, {columns.spread, "±"}, {columns.phase, tr("phase")}};
    for (const auto& [right, text] : heads)
        painter.drawText(QRect(0, 0, right, height), Qt::AlignRight | Qt::AlignVCenter, text);
}

void HarmonicsView::PaintRow(QPainter& painter, const Fonts& fonts, const Columns& columns, const Row& row,
                             int top) const {
    const Theme& theme = Theme::Current();
    const int height = fonts.RowHeight();
    const auto cell = [&](int right, const QString& text) {
        painter.drawText(QRect(0, top, right, height), Qt::AlignRight | Qt::AlignVCenter, text);
    };
    const QColor ink = row.bound || row.quiet ? theme.quiet : theme.text;
    painter.setFont(fonts.names);
    painter.setPen(theme.text);
    painter.drawText(QRect(kCellIndent, top, width(), height), Qt::AlignVCenter, row.order);
    painter.setFont(row.bound ? fonts.bound : fonts.level);
    painter.setPen(ink);
    cell(columns.level, row.level);
    if (row.bound) {
        painter.setPen(theme.quiet);
        painter.setFont(fonts.quiet);
        cell(columns.phase, row.boundNote);
    } else {
        painter.setFont(fonts.phase);
        cell(columns.phase, row.phase);
        painter.setPen(theme.quiet);
        painter.setFont(fonts.spread);
        cell(columns.spread, row.spread);
    }
    PaintBar(painter, QRectF(columns.bar, top + (height - kBarHeight) / 2.0, kBarWidth, kBarHeight),
             row.bound ? 0.0 : row.bar);
}

void HarmonicsView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PaintBackground(painter, *this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Fonts fonts(font());
    const Columns columns = Places(fonts);
    PaintHead(painter, fonts, columns);
    const int height = fonts.RowHeight();
    int top = height;
    for (std::size_t i = 0; i < rows_.size(); ++i, top += height) {
        if (i % 2 == 0) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(Theme::Current().stripe);
            painter.drawRoundedRect(QRect(0, top, width(), height), 4.0, 4.0);
        }
        PaintRow(painter, fonts, columns, rows_[i], top);
    }
}

}  // namespace sonavex::ui
