#pragma once

#include <QComboBox>

namespace sonavex::ui {

// A drop-down list in the theme's colours. A text that is too long is elided.
class ChoiceBox : public QComboBox {
    Q_OBJECT

public:
    explicit ChoiceBox(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    struct Spaces {
        int beforeText;
        int arrow;
    };
    ChoiceBox(QWidget* parent, Spaces spaces);

    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    Spaces spaces_;
};

}  // namespace sonavex::ui
