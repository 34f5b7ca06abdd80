#pragma once

#include <QWidget>

namespace sonavex::ui {

// A level from 0 to full scale, linear in percent, with marks in dBFS below and a visible overload.
class LevelBar : public QWidget {
    Q_OBJECT

public:
    explicit LevelBar(QWidget* parent = nullptr);

    void SetLevel(double level, double fullScale);
    void SetOverload(bool overload);
    double Fraction() const noexcept { return fraction_; }
    bool Overload() const noexcept { return overload_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double fraction_ = 0.0;
    bool overload_ = false;
};

}  // namespace sonavex::ui
