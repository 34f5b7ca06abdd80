#pragma once

#include <QPen>
#include <QString>
#include <QWidget>

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

    QSize sizeHint() const override { return {20, 6}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString trace_;
};

}  // namespace sonavex::ui
