#pragma once

#include <QWidget>

#include "core/plot/TraceImage.h"
#include "core/plot/WavePlot.h"
#include "ui/widgets/PlotCanvas.h"
#include "ui/widgets/PlotFonts.h"
#include "ui/widgets/PlotSchedule.h"

namespace sonavex::ui {

// Shows the waveform and the residual next to each other. Takes no input.
class WaveView : public QWidget {
    Q_OBJECT

public:
    explicit WaveView(QWidget* parent = nullptr);

    // Shows the present state of the plot, which must outlive this widget.
    void Show(const WavePlot& plot);

    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void ApplyLook();
    void Paint();
    void PaintAll();
    void ShowAxes(PlotCanvas& canvas, const PlotCanvas::Axis& time, const PlotCanvas::Axis& scale);
    void PaintSignal(QPainter& painter, const QRectF& area);
    void PaintResidual(QPainter& painter, const QRectF& area);
    void PaintTitle(QPainter& painter, const QRectF& area, const QString& title, const QString& scale) const;

    // What columns_ were made from.
    struct Key {
        std::shared_ptr<const WaveRecord> record;
        int periods = 0;
        std::size_t width = 0;
        friend bool operator==(const Key&, const Key&) = default;
    };
    const WaveColumns& ColumnsFor(std::size_t width);

    const WavePlot* plot_ = nullptr;
    PlotCanvas signal_;
    PlotCanvas residual_;
    Key key_;
    WaveColumns columns_;
    TraceImage image_;
    PlotFonts fonts_;
    PlotSchedule schedule_;
};

}  // namespace sonavex::ui
