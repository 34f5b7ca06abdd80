#pragma once

#include <QWidget>

#include "core/run/display/RunPlot.h"
#include "ui/widgets/PlotCanvas.h"
#include "ui/widgets/PlotFonts.h"

namespace sonavex::ui {

// Shows the plot of a run and passes the user's actions on as signals. A click places the cursor at the
// nearest point, the keys Left and Right move it by a point.
class RunView : public QWidget {
    Q_OBJECT

public:
    explicit RunView(QWidget* parent = nullptr);

    // Shows the present state of the plot, which must outlive this widget.
    void Show(const RunPlot& plot);

    // Paints the plot with its texts on another device, for example an image or a page. Needs no display.
    // size: in pixels before scaling.
    void PaintOn(QPaintDevice& device, const QSize& size, double scale);

    QRectF PlotArea() const { return canvas_.PlotArea(); }
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    // x: fraction of the plot from its left edge.
    void Clicked(double x);
    void Stepped(int points);

protected:
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void ApplyLook();
    void PrepareAxes(const QSizeF& area);
    void Paint();

    const RunPlot* plot_ = nullptr;
    PlotCanvas canvas_;
    PlotFonts fonts_;
};

}  // namespace sonavex::ui
