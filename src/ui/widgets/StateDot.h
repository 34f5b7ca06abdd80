#pragma once

#include <QColor>
#include <QWidget>

namespace sonavex::ui {

// A coloured dot.
class StateDot : public QWidget {
    Q_OBJECT

public:
    explicit StateDot(QWidget* parent = nullptr);

    void SetColour(const QColor& colour);
    QColor Colour() const { return colour_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor colour_{Qt::gray};
};

}  // namespace sonavex::ui
