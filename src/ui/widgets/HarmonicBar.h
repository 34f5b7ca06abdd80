#pragma once

#include <QWidget>

namespace sonavex::ui {

// Bar of a harmonic's level relative to the fundamental, -120 to 0 dB. Shows the pattern of all harmonics at
// a glance.
class HarmonicBar : public QWidget {
    Q_OBJECT

public:
    explicit HarmonicBar(QWidget* parent = nullptr);

    void SetLevelDb(double levelDb);
    // Shows an empty track for a missing reading.
    void Clear();
    double Fraction() const noexcept { return fraction_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void SetFraction(double fraction);

    double fraction_ = 0.0;
};

}  // namespace sonavex::ui
