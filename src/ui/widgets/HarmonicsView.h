#pragma once

#include <QString>
#include <QWidget>
#include <vector>

class QPainter;

namespace sonavex::ui {

// The table of the harmonics: order, level, spread, phase and a bar for each.
class HarmonicsView : public QWidget {
    Q_OBJECT

public:
    struct Row {
        QString order;
        QString level;
        QString spread;
        QString phase;
        double bar = 0.0;        // 0 to 1
        bool bound = false;      // an upper limit: quiet, without spread, phase and bar
        QString boundNote = {};  // takes the place of spread and phase of a bound
        bool quiet = false;      // not yet valid
        friend bool operator==(const Row&, const Row&) = default;
    };

    explicit HarmonicsView(QWidget* parent = nullptr);

    void SetRows(std::vector<Row> rows);
    const std::vector<Row>& Rows() const noexcept { return rows_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Columns;
    struct Fonts;
    Columns Places(const Fonts& fonts) const;
    void PaintHead(QPainter& painter, const Fonts& fonts, const Columns& columns) const;
    void PaintRow(QPainter& painter, const Fonts& fonts, const Columns& columns, const Row& row,
                  int top) const;
    QString Spoken() const;

    std::vector<Row> rows_;
};

}  // namespace sonavex::ui
