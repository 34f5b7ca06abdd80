// Widgets of the Analyzer that show states, readings and keys.

#include <gmock/gmock.h>

#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QToolTip>
#include <QVBoxLayout>

#include "support/QtWait.h"
#include "ui/widgets/ChevronButton.h"
#include "ui/widgets/ChipView.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HarmonicsView.h"
#include "ui/widgets/KeyButton.h"
#include "ui/widgets/ReadingRowView.h"
#include "ui/widgets/Theme.h"
#include "ui/widgets/TraceSwatch.h"
#include "ui/widgets/UnitEdit.h"

namespace sonavex {
namespace {

using ui::ChipView;

QImage PaintedImage(QWidget& widget) {
    widget.resize(widget.sizeHint());
    widget.ensurePolished();
    return widget.grab().toImage();
}

bool HasColour(const QImage& image, const QColor& colour) {
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) == colour) return true;
    return false;
}

TEST(Chip, ShowsEachStateInItsColour) {
    const ui::Theme& theme = ui::Theme::Current();
    const std::pair<ChipView::Kind, QColor> states[] = {
        {ChipView::Kind::kOff, theme.quiet},       {ChipView::Kind::kValid, theme.valid},
        {ChipView::Kind::kSettling, theme.accent}, {ChipView::Kind::kUnsteady, theme.warning},
        {ChipView::Kind::kVoid, theme.overload},   {ChipView::Kind::kOverload, theme.overload}};
    for (const auto& [kind, colour] : states) {
        ChipView chip;
        chip.Show(kind, "STATE", 0.5);
        EXPECT_TRUE(HasColour(PaintedImage(chip), colour)) << static_cast<int>(kind);
        EXPECT_EQ(chip.accessibleDescription(), "STATE");
    }
}

TEST(Chip, ShowsEachStateInItsShape) {
    std::vector<QImage> shapes;
    for (const auto kind : {ChipView::Kind::kValid, ChipView::Kind::kSettling, ChipView::Kind::kUnsteady,
                            ChipView::Kind::kVoid, ChipView::Kind::kOverload}) {
        ChipView chip;
        chip.Show(kind, "", 0.25);
        shapes.push_back(PaintedImage(chip).convertToFormat(QImage::Format_Grayscale8));
    }
    for (std::size_t i = 0; i < shapes.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) EXPECT_NE(shapes[i], shapes[j]) << i << ' ' << j;
}

TEST(Chip, FillsItsRing) {
    ChipView chip;
    chip.Show(ChipView::Kind::kSettling, "SETTLING 1 of 4", 0.25);
    const QImage quarter = PaintedImage(chip);
    chip.Show(ChipView::Kind::kSettling, "SETTLING 1 of 4", 0.75);
    EXPECT_NE(PaintedImage(chip), quarter);
}

// Of a label that is too narrow for its text.
QString TipOf(const char* text, const char* tip) {
    ui::ElidedLabel label;
    label.setText(text);
    label.setToolTip(tip);
    label.resize(40, 20);
    label.show();
    QHelpEvent help(QEvent::ToolTip, {5, 5}, label.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&label, &help);
    const QString shown = QToolTip::text();
    QToolTip::hideText();
    return shown;
}

TEST(ElidedText, IsWholeInTheToolTipAndThereOnce) {
    EXPECT_EQ(TipOf("a long name of a device", "The input"), "a long name of a device\nThe input");
    EXPECT_EQ(TipOf("a long name of a device", ""), "a long name of a device");
    EXPECT_EQ(TipOf("input: resampled\routput: resampled", "input: resampled\noutput: resampled\n\nMore"),
              "input: resampled\noutput: resampled\n\nMore");
}

TEST(KeyCap, MakesRoomForItself) {
    ui::KeyButton button;
    button.setText("Hold");
    const int plain = button.sizeHint().width();
    button.SetKeyCap("H");
    EXPECT_GT(button.sizeHint().width(), plain);
    button.ShowKeyCap(false);
    EXPECT_EQ(button.sizeHint().width(), plain);
}

TEST(KeyCap, IsPainted) {
    ui::KeyButton button;
    button.setText("Hold");
    button.SetKeyCap("H");
    button.resize(button.sizeHint());
    const QImage with = button.grab().toImage();
    button.ShowKeyCap(false);
    EXPECT_NE(button.grab().toImage(), with);
}

TEST(FoldingButton, TurnsItsArrow) {
    ui::ChevronButton button;
    button.setText("Fold");
    button.SetFolds(true);
    button.SetOpen(true);
    const QImage open = PaintedImage(button);
    button.SetOpen(false);
    EXPECT_NE(PaintedImage(button), open);
}

TEST(FieldWithUnit, KeepsItsTextAwayFromTheUnit) {
    ui::UnitEdit field;
    const int plain = field.textMargins().right();
    field.SetUnit("Hz");
    EXPECT_GE(field.textMargins().right(), plain + field.fontMetrics().horizontalAdvance("Hz") * 9 / 10);
    field.SetUnit("");
    EXPECT_EQ(field.textMargins().right(), plain);
}

TEST(HarmonicsTableView, GrowsByARowForEachHarmonic) {
    ui::HarmonicsView table;
    const int head = table.sizeHint().height();
    table.SetRows({{"H2", "-104.01", "0.08", "134°", 0.77}, {"H3", "-109.05", "0.15", "-77°", 0.68}});
    EXPECT_EQ(table.sizeHint().height(), 3 * head);
}

TEST(HarmonicsTableView, SpeaksItsRows) {
    ui::HarmonicsView table;
    table.SetRows({{"H2", "-104.01", "0.08", "134°", 0.77},
                   {"H8", QString::fromUtf8("≤ -140.7"), "", "", 0.0, true, "in the noise"}});
    EXPECT_EQ(table.accessibleDescription(),
              QString::fromUtf8("H2 -104.01 dBc, phase 134°\nH8 at most -140.7 dBc"));
}

TEST(HarmonicsTableView, DrawsNoBarForABound) {
    const QColor accent = ui::Theme::Current().accent;
    ui::HarmonicsView table;
    table.SetRows({{"H2", "-104.01", "0.08", "134°", 0.77}});
    EXPECT_TRUE(HasColour(PaintedImage(table), accent));
    table.SetRows({{"H2", "-140.7", "", "", 0.77, true, "in the noise"}});
    EXPECT_FALSE(HasColour(PaintedImage(table), accent));
}

TEST(RowOfAReading, IsQuietUntilItIsValid) {
    QWidget window;
    window.setLayout(new QVBoxLayout);
    auto* const row = new ui::ReadingRowView(true, &window);
    window.layout()->addWidget(row);
    row->Value().setText("-97.70");
    ui::ApplyTheme(window);
    row->AlignColumns();
    ui::SetQuietInk(row->Value(), true);
    EXPECT_EQ(row->Value().palette().color(QPalette::WindowText), ui::Theme::Current().quiet);
    ui::SetQuietInk(row->Value(), false);
    EXPECT_EQ(row->Value().palette().color(QPalette::WindowText), ui::Theme::Current().text);
}

TEST(Swatch, HasThePenThatReplacesATrace) {
    ui::TraceSwatch swatch;
    QColor colour = Qt::red;
    swatch.SetPen([&colour] { return QPen(colour, 2.0); });
    EXPECT_TRUE(HasColour(PaintedImage(swatch), Qt::red));
    colour = Qt::blue;
    EXPECT_TRUE(HasColour(PaintedImage(swatch), Qt::blue));
}

TEST(Swatch, HasTheColourOfItsTrace) {
    ui::TraceSwatch swatch;
    swatch.SetTrace("kept");
    EXPECT_TRUE(HasColour(PaintedImage(swatch), ui::Theme::Current().second));
    swatch.SetTrace("live");
    EXPECT_TRUE(HasColour(PaintedImage(swatch), ui::Theme::Current().accent));
}

}  // namespace
}  // namespace sonavex
