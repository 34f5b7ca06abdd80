#pragma once

#include <QPoint>
#include <QWidget>
#include <optional>

#include "core/plot/SpectrumPlot.h"
#include "ui/widgets/PlotCanvas.h"
#include "ui/widgets/PlotSchedule.h"
#include "ui/widgets/SpectrumPainter.h"

namespace sonavex::ui {

// Shows a plot of a spectrum and passes the user's actions on as signals. The wheel zooms the frequency at
// the pointer, with Ctrl or over the level axis the level; dragging moves the view; a click places the
// cursor. Keys: Left and Right move the cursor by a bin, with Ctrl by a harmonic; + and - zoom at the cursor;
// Escape removes it.
class SpectrumView : public QWidget {
    Q_OBJECT

public:
    explicit SpectrumView(QWidget* parent = nullptr);

    // Shows the present state of the plot, which must outlive this widget.
    void Show(const SpectrumPlot& plot);

    // Paints the plot with its texts on another device, for example an image or a page. size: in pixels
    // before scaling.
    void PaintOn(QPaintDevice& device, const QSize& size, double scale);

    QSize minimumSizeHint() const override;

Q_SIGNALS:
    // Fractions of the plot from its lower left corner; see SpectrumPlot.
    void FrequencyZoomed(double x, double steps);
    void LevelZoomed(double y, double steps);
    void CursorZoomed(double steps);
    void Dragged(double x, double y);
    void Clicked(double x, double reach);
    void Stepped(int bins);
    void SteppedByHarmonic(int direction);
    void CursorRemoved();

protected:
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    bool PassKey(int key, bool control);
    void ApplyLook();
    bool PrepareAxes(const QSizeF& area);
    void Paint();
    void PaintAll();

    const SpectrumPlot* plot_ = nullptr;
    PlotCanvas canvas_;
    SpectrumPainter painter_;
    PlotFonts fonts_;
    PlotSchedule schedule_;
    bool userActs_ = false;
    PlotRange band_;  // in Hz, as last painted

    struct Press {
        QPointF from;  // of the press, then of the last move
        bool dragged = false;
    };
    std::optional<Press> press_;
};

}  // namespace sonavex::ui
