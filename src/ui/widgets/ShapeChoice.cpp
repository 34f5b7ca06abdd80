#include "ui/widgets/ShapeChoice.h"

#include <QAbstractButton>
#include <QEnterEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <numbers>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kFirstRow = 3;
constexpr int kShapeGap = 5;
// The pictures are drawn in a field of this size.
constexpr QSizeF kPictureSize(30.0, 12.0);

QPainterPath Lines(std::initializer_list<QPointF> points) {
    QPainterPath path(*points.begin());
    for (const QPointF& point : points) path.lineTo(point);
    return path;
}

QPainterPath SineShape() {
    QPainterPath path(QPointF(0.0, 6.0));
    for (int x = 1; x <= 30; ++x) path.lineTo(x, 6.0 - 6.0 * std::sin(2.0 * std::numbers::pi * x / 30.0));
    return path;
}

// A line on the axis for each tone.
QPainterPath Tones(std::initializer_list<QPointF> tops) {
    QPainterPath path = Lines({{0.0, 12.0}, {30.0, 12.0}});
    for (const QPointF& top : tops) path.addPath(Lines({{top.x(), 12.0}, top}));
    return path;
}

QPainterPath Picture(int shape) {
    switch (shape) {
        case 0:
            return SineShape();
        case 1:
            return Tones({{11.0, 0.0}, {19.0, 0.0}});
        case 2:
            return Tones(
                {{3.0, 3.0}, {7.0, 0.0}, {11.0, 3.0}, {15.0, 0.0}, {19.0, 3.0}, {23.0, 0.0}, {27.0, 3.0}});
        case 3:
            return Lines({{4.0, 12.0}, {4.0, 1.0}, {15.0, 1.0}, {15.0, 12.0}, {26.0, 12.0}, {26.0, 1.0}});
        case 4:
            return Lines({{4.0, 12.0}, {11.0, 1.0}, {18.0, 12.0}, {25.0, 1.0}});
        case 5:
            return Lines({{4.0, 12.0}, {15.0, 1.0}, {15.0, 12.0}, {26.0, 1.0}, {26.0, 12.0}});
        default:
            return Lines({{3.0, 6.0},
                          {5.0, 7.5},
                          {7.0, 11.0},
                          {9.0, 9.5},
                          {11.0, 2.0},
                          {13.0, 3.5},
                          {15.0, 11.0},
                          {17.0, 0.5},
                          {19.0, 10.0},
                          {21.0, 9.5},
                          {23.0, 5.5},
                          {25.0, 3.5},
                          {27.0, 3.5}});
    }
}

class ShapeButton : public QAbstractButton {
public:
    ShapeButton(int shape, const QString& name, QWidget* parent) : QAbstractButton(parent), shape_(shape) {
        setText(name);
        setFocusPolicy(Qt::StrongFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override {
        const QFontMetrics metrics(QuietFont(font()));
        return {metrics.horizontalAdvance(text()) + 6, metrics.height() + 26};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void enterEvent(QEnterEvent* event) override {
        QAbstractButton::enterEvent(event);
        update();
    }
    void leaveEvent(QEvent* event) override {
        QAbstractButton::leaveEvent(event);
        update();
    }
    void paintEvent(QPaintEvent*) override {
        const Theme& theme = Theme::Current();
        const bool filled = isChecked() && isEnabled();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const qreal line = hasFocus() ? 2.0 : 1.0;
        painter.setPen(QPen(Edge(theme), line));
        painter.setBrush(filled        ? theme.accent
                         : isChecked() ? theme.track
                         : isEnabled() ? theme.field
                                       : theme.window);
        painter.drawRoundedRect(QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2), 5.0, 5.0);
        const QColor ink = filled ? theme.onAccent : isEnabled() ? theme.text : theme.quiet;
        painter.setPen(QPen(ink, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.setFont(QuietFont(font()));
        painter.drawText(rect().adjusted(0, 0, 0, -4), Qt::AlignHCenter | Qt::AlignBottom, text());
        painter.translate((width() - kPictureSize.width()) / 2.0, 7.0);
        painter.drawPath(Picture(shape_));
    }

private:
    QColor Edge(const Theme& theme) const {
        if (hasFocus()) return isChecked() ? theme.text : theme.accent;
        return isEnabled() && (isChecked() || underMouse()) ? theme.accent : theme.border;
    }

    int shape_;
};

}  // namespace

ShapeChoice::ShapeChoice(QWidget* parent) : WaveChoice(parent) {
    delete layout();
    auto* const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(kShapeGap);
    for (int i = 0; i < 2; ++i) {
        auto* const row = new QHBoxLayout;
        row->setSpacing(kShapeGap);
        rows->addLayout(row);
    }
}

QAbstractButton* ShapeChoice::MakeButton(int index, const QString& name) {
    return new ShapeButton(index, name, this);
}

void ShapeChoice::Place(int index, QAbstractButton& button) {
    static_cast<QBoxLayout*>(layout()->itemAt(index < kFirstRow ? 0 : 1)->layout())->addWidget(&button, 1);
}

}  // namespace sonavex::ui
