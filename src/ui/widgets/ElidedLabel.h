#pragma once

#include <QLabel>

namespace sonavex::ui {

// A line of text that may be longer than its place: what does not fit is left out, with dots in its
// place, and the whole of it is in the tool tip.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
};

}  // namespace sonavex::ui
