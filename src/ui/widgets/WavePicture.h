#pragma once

#include <QWidget>

namespace sonavex::ui {

// Picture of one period of the selected waveform and, for a sweep, of its frequency over time.
class WavePicture : public QWidget {
    Q_OBJECT

public:
    explicit WavePicture(QWidget* parent = nullptr);

    void SetWave(int waveType);
    // Frequencies in Hz. Without a sweep only the waveform is drawn.
    void SetSweep(bool sweeps, double startHz, double endHz, bool loops);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void DrawWave(QPainter& painter, const QRectF& area) const;
    void DrawSweep(QPainter& painter, const QRectF& area) const;

    int waveType_ = 0;
    bool sweeps_ = false;
    double startHz_ = 0.0;
    double endHz_ = 0.0;
    bool loops_ = false;
};

}  // namespace sonavex::ui
