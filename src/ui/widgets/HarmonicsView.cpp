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

int HarmonicsView::RowHeight() const {
    return QFontMetrics(FixedFont(kLevelScale, true)).height() + kRowPadding - 1;
}

HarmonicsView::Columns HarmonicsView::Places() const {
    Columns columns{};
    columns.bar = width() - kCellIndent - kBarWidth;
    columns.phase = columns.bar - kCellGap - 4;
    columns.spread = columns.phase -
                     QFontMetrics(FixedFont(1.0, false)).horizontalAdvance(QStringLiteral("-180°")) -
                     kCellGap - 6;
    columns.level = columns.spread - QFontMetrics(FixedFont(kSmallScale, false)).horizontalAdvance("00.00") -
                    kCellGap - 8;
    return columns;
}

QSize HarmonicsView::sizeHint() const {
    const int level = QFontMetrics(FixedFont(kLevelScale, true)).horizontalAdvance("-000.00");
    const int order = fontMetrics().horizontalAdvance("H99");
    const int used = width() - Places().level;
    return {kCellIndent + order + kCellGap + level + used, static_cast<int>(rows_.size() + 1) * RowHeight()};
}

void HarmonicsView::PaintHead(QPainter& painter, const Columns& columns) const {
    painter.setFont(QuietFont(font()));
    painter.setPen(Theme::Current().quiet);
    const int height = RowHeight();
    painter.drawText(QRect(kCellIndent, 0, width(), height), Qt::AlignVCenter, tr("Order"));
    const std::pair<int, QString> heads[] = {
        {columns.level, "dBc"}, {columns.spread, "±"}, {columns.phase, tr("phase")}};
    for (const auto& [right, text] : heads)
        painter.drawText(QRect(0, 0, right, height), Qt::AlignRight | Qt::AlignVCenter, text);
}

void HarmonicsView::PaintRow(QPainter& painter, const Columns& columns, const Row& row, int top) const {
    const Theme& theme = Theme::Current();
    const int height = RowHeight();
    const auto cell = [&](int right, const QString& text) {
        painter.drawText(QRect(0, top, right, height), Qt::AlignRight | Qt::AlignVCenter, text);
    };
    const QColor ink = row.bound || row.quiet ? theme.quiet : theme.text;
    painter.setFont(font());
    painter.setPen(theme.text);
    painter.drawText(QRect(kCellIndent, top, width(), height), Qt::AlignVCenter, row.order);
    painter.setFont(FixedFont(kLevelScale, !row.bound));
    painter.setPen(ink);
    cell(columns.level, row.level);
    if (row.bound) {
        painter.setPen(theme.quiet);
        painter.setFont(QuietFont(font()));
        cell(columns.phase, row.boundNote);
    } else {
        painter.setFont(FixedFont(1.0, false));
        cell(columns.phase, row.phase);
        painter.setPen(theme.quiet);
        painter.setFont(FixedFont(kSmallScale, false));
        cell(columns.spread, row.spread);
    }
    PaintBar(painter, QRectF(columns.bar, top + (height - kBarHeight) / 2.0, kBarWidth, kBarHeight),
             row.bound ? 0.0 : row.bar);
}

void HarmonicsView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Columns columns = Places();
    PaintHead(painter, columns);
    int top = RowHeight();
    for (std::size_t i = 0; i < rows_.size(); ++i, top += RowHeight()) {
        if (i % 2 == 0) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(Theme::Current().stripe);
            painter.drawRoundedRect(QRect(0, top, width(), RowHeight()), 4.0, 4.0);
        }
        PaintRow(painter, columns, rows_[i], top);
    }
}

}  // namespace sonavex::ui
