#pragma once

#include <QRectF>
#include <QWidget>

namespace sonavex::ui {

// Level bar from 0 to full scale: linear, with marks in percent above and in dBFS below. Overload is
// highlighted.
class LevelBar : public QWidget {
    Q_OBJECT

public:
    explicit LevelBar(QWidget* parent = nullptr);

    void SetLevel(double level, double fullScale);
    void SetOverload(bool overload);
    // Marks the level as silence, which is drawn without emphasis even if it reads as overload.
    void SetSilent(bool silent);
    double Fraction() const noexcept { return fraction_; }
    bool Overload() const noexcept { return overload_; }
    bool Silent() const noexcept { return silent_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void PaintMark(QPainter& painter, const QRectF& track, double fraction, const QString& text,
                   bool above) const;
    void PaintMarks(QPainter& painter, const QRectF& track) const;
    QRectF Track() const;

    mutable QRectF track_;  // null after a change of size or font
    double fraction_ = 0.0;
    bool overload_ = false;
    bool silent_ = false;
};

}  // namespace sonavex::ui
