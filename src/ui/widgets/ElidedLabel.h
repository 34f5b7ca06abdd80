#pragma once

#include <QLabel>

namespace sonavex::ui {

// A line of text that is elided if it is too long; the tool tip then begins with the whole text.
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
