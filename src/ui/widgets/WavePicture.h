#pragma once

#include <QWidget>

namespace sonavex::ui {

// One period of the chosen waveform and, when the tone sweeps, its frequency against time.
class WavePicture : public QWidget {
    Q_OBJECT

public:
    explicit WavePicture(QWidget* parent = nullptr);

    void SetWave(int waveType);
    // Frequencies in Hz; no sweep: only the waveform is drawn.
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
