#pragma once

#include <QString>
#include <QWidget>

class QPainter;

namespace sonavex::ui {

// The state of a measurement as a shape, a word and a colour in a rounded frame.
class ChipView : public QWidget {
    Q_OBJECT

public:
    enum class Kind { kOff, kValid, kSettling, kUnsteady, kVoid, kOverload };

    explicit ChipView(QWidget* parent = nullptr);

    // progress: how far a settling measurement is, 0 to 1.
    void Show(Kind kind, const QString& text, double progress);
    // A filled chip has no frame but its whole ground in its colour, if it is a failure.
    void SetFilled(bool filled) { filled_ = filled; }
    // Draws the shape of a state other than settling in a field of 12 x 12 around the origin.
    static void PaintShape(QPainter& painter, Kind kind, const QColor& ink);
    QString Text() const { return text_; }
    Kind Shown() const noexcept { return kind_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintShape(QPainter& painter, const QColor& ink) const;

    Kind kind_ = Kind::kOff;
    QString text_;
    double progress_ = 0.0;
    bool filled_ = false;
};

}  // namespace sonavex::ui
