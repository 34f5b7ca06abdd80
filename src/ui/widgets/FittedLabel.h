#pragma once

#include <QChar>
#include <QLabel>
#include <QPixmap>
#include <map>

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
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Fit();
    const QPixmap& Figure(QChar character);

    bool fitting_ = false;
    // Characters as they were painted last: filling such large outlines costs more than all else that an
    // update of the meter paints. Empty after a change of font or colours.
    std::map<QChar, QPixmap> figures_;
};

// Where a FittedLabel, its only child, stands: asks the layout around it for what the label wants and gives
// the label all of it. A change of the label's text then ends here; a layout would be made anew.
class FittedPlace : public QWidget {
    Q_OBJECT

public:
    explicit FittedPlace(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    FittedLabel& Child() const;
};

}  // namespace sonavex::ui
