#pragma once

#include <QLabel>

namespace sonavex::ui {

// A label whose figures are as large as the room allows, always for the widest reading, so that
// changing digits and placeholders never move or resize anything.
class FittedLabel : public QLabel {
    Q_OBJECT

public:
    explicit FittedLabel(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Fit();
    bool fitting_ = false;
};

}  // namespace sonavex::ui
