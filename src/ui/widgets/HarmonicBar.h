#pragma once

#include <QWidget>

namespace sonavex::ui {

// A harmonic's level against the fundamental, -120 to 0 dB, so that the pattern of all can be seen
// without reading.
class HarmonicBar : public QWidget {
    Q_OBJECT

public:
    explicit HarmonicBar(QWidget* parent = nullptr);

    void SetLevelDb(double levelDb);
    // No reading: an empty track.
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
