#pragma once

#include <QChar>
#include <QLabel>
#include <QPixmap>
#include <QString>
#include <map>

namespace sonavex::ui {

// A label with figures as large as its area allows. The size depends on the widest reading only, so that
// changing digits never move or resize anything.
class FittedLabel : public QLabel {
    Q_OBJECT
    Q_PROPERTY(QString widestReading READ WidestReading WRITE SetWidestReading)

public:
    explicit FittedLabel(QWidget* parent = nullptr);

    QString WidestReading() const { return widestReading_; }
    void SetWidestReading(const QString& widestReading);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Fit();
    const QPixmap& Figure(QChar character);
    void ShrinkToFit(QPainter& painter, QPoint right, int textWidth) const;

    QString widestReading_ = QStringLiteral("-00.0000");
    bool fitting_ = false;
    // Cached images of the characters: drawing such large outlines costs more than everything else in a meter
    // update. Cleared when font or colours change.
    std::map<QChar, QPixmap> figures_;
};

// The parent of one FittedLabel. Requests the label's size from the surrounding layout and gives the label
// its whole area, so that a change of the label's text never causes a layout.
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
