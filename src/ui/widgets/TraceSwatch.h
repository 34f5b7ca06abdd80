#pragma once

#include <QPen>
#include <QString>
#include <QWidget>
#include <functional>

namespace sonavex::ui {

// A piece of a curve for the legend of a plot.
class TraceSwatch : public QWidget {
    Q_OBJECT
    // live, kept, noise, captured or harmonics
    Q_PROPERTY(QString trace READ Trace WRITE SetTrace)

public:
    explicit TraceSwatch(QWidget* parent = nullptr);

    // The pen that draws such a curve.
    static QPen PenOf(const QString& trace);

    QString Trace() const { return trace_; }
    void SetTrace(const QString& trace);
    // A pen in place of that of a trace. It is asked for with each painting, because it has the theme's
    // colour.
    void SetPen(std::function<QPen()> pen);

    QSize sizeHint() const override { return {20, 6}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString trace_;
    std::function<QPen()> pen_;
};

}  // namespace sonavex::ui
