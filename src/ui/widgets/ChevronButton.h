#pragma once

#include <QPushButton>

namespace sonavex::ui {

// A button with a small arrow head: in front of the text it folds and opens something, after it it opens the
// button's menu.
class ChevronButton : public QPushButton {
    Q_OBJECT
    Q_PROPERTY(bool folds READ Folds WRITE SetFolds)

public:
    explicit ChevronButton(QWidget* parent = nullptr);

    bool Folds() const noexcept { return folds_; }
    void SetFolds(bool folds);
    // Whether that which the button folds is open; the arrow head then points down.
    void SetOpen(bool open);
    bool Open() const noexcept { return open_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool folds_ = false;
    bool open_ = true;
};

}  // namespace sonavex::ui
