// The exclusive choices of the Analyzer: segments, shapes, units and record lengths.

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <memory>

#include "support/QtWait.h"
#include "ui/widgets/LengthChoice.h"
#include "ui/widgets/SegmentedChoice.h"
#include "ui/widgets/ShapeChoice.h"
#include "ui/widgets/UnitChoice.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

template <class Choice>
class ButtonsOf : public testing::Test {
protected:
    ButtonsOf() {
        choice.setAccessibleName("Kind");
        choice.SetNames({"One", "Two", "Three", "Four"});
        choice.SetIndex(1);
        window.setLayout(new QVBoxLayout);
        window.layout()->addWidget(&choice);
        window.show();
        Settle();
    }
    QAbstractButton& Button(int index) { return *choice.Buttons()[index]; }

    QWidget window;
    Choice choice{&window};
    QSignalSpy chosen{&choice, &ui::WaveChoice::Chosen};
};

using Choices = testing::Types<ui::SegmentedChoice, ui::ShapeChoice>;
TYPED_TEST_SUITE(ButtonsOf, Choices);

TYPED_TEST(ButtonsOf, SelectByAClick) {
    QTest::mouseClick(&this->Button(3), Qt::LeftButton);
    EXPECT_EQ(this->choice.Index(), 3);
    ASSERT_EQ(this->chosen.count(), 1);
    EXPECT_EQ(this->chosen[0][0].toInt(), 3);
}

TYPED_TEST(ButtonsOf, SelectByArrowKeys) {
    this->Button(1).setFocus();
    QTest::keyClick(&this->Button(1), Qt::Key_Right);
    EXPECT_EQ(this->choice.Index(), 2);
    EXPECT_TRUE(this->Button(2).hasFocus());
    QTest::keyClick(&this->Button(2), Qt::Key_Left);
    EXPECT_EQ(this->choice.Index(), 1);
    EXPECT_EQ(this->chosen.count(), 2);
}

TYPED_TEST(ButtonsOf, AreNotReportedWhenTheFormSelects) {
    this->choice.SetIndex(2);
    EXPECT_TRUE(this->Button(2).isChecked());
    EXPECT_EQ(this->chosen.count(), 0);
}

TYPED_TEST(ButtonsOf, AreReachedByTheLetterOfTheirLabel) {
    QLabel label("&Kind", &this->window);
    label.setBuddy(&this->choice);
    label.show();
    QTest::keyClick(&this->window, Qt::Key_K, Qt::AltModifier);
    EXPECT_TRUE(this->Button(1).hasFocus());
}

TYPED_TEST(ButtonsOf, AreReachedByTheTabKeyWhereOneIsSelected) {
    QLineEdit before(&this->window);
    QWidget::setTabOrder(&before, &this->Button(0));
    before.show();
    before.setFocus();
    QTest::keyClick(&before, Qt::Key_Tab);
    EXPECT_TRUE(this->Button(1).hasFocus());
}

TYPED_TEST(ButtonsOf, KeepTheirPlaceInTheTabOrderWithNewNames) {
    QLineEdit before(&this->window);
    QLineEdit after(&this->window);
    QWidget::setTabOrder(&before, &this->Button(0));
    for (int i = 0; i < 3; ++i) QWidget::setTabOrder(&this->Button(i), &this->Button(i + 1));
    QWidget::setTabOrder(&this->Button(3), &after);
    this->choice.SetNames({"Five", "Six"});
    this->choice.SetIndex(0);
    for (QLineEdit* entry : {&before, &after}) entry->show();
    before.setFocus();
    QTest::keyClick(&before, Qt::Key_Tab);
    EXPECT_TRUE(this->Button(0).hasFocus());
    QTest::keyClick(&this->Button(0), Qt::Key_Tab);
    EXPECT_TRUE(after.hasFocus());
}

TYPED_TEST(ButtonsOf, NameTheirGroup) {
    EXPECT_EQ(this->Button(0).accessibleName(), "Kind: One");
}

TYPED_TEST(ButtonsOf, ShowTheirWholeNames) {
    for (QAbstractButton* button : this->choice.Buttons())
        EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()));
}

TEST(ShapeButtons, AreInARowOfThreeAndARowOfFour) {
    ui::ShapeChoice choice;
    choice.SetNames({"1", "2", "3", "4", "5", "6", "7"});
    choice.resize(choice.sizeHint());
    choice.show();
    Settle();
    std::vector<int> perRow(2);
    for (const QAbstractButton* button : choice.Buttons()) ++perRow[button->y() > 0 ? 1 : 0];
    EXPECT_THAT(perRow, ElementsAre(3, 4));
}

TEST(UnitOfAReading, TakesTheFocusOnlyIfThereIsAChoice) {
    ui::UnitChoice unit;
    unit.addItems({"dB"});
    EXPECT_EQ(unit.focusPolicy(), Qt::NoFocus);
    unit.addItems({"%"});
    EXPECT_NE(unit.focusPolicy(), Qt::NoFocus);
    unit.removeItem(1);
    EXPECT_EQ(unit.focusPolicy(), Qt::NoFocus);
}

TEST(LengthsList, ShowsTheNameClosedAndColumnsOpen) {
    ui::LengthChoice lengths;
    lengths.SetEntries(
        {{"32k points", "32k", "0.683", "1.465", "11.7"}, {"64k points", "64k", "1.365", "0.732", "5.9"}});
    lengths.setCurrentIndex(1);
    EXPECT_EQ(lengths.currentText(), "64k points");
    lengths.show();
    lengths.showPopup();
    Settle();
    const QAbstractItemModel& list = *lengths.view()->model();
    QStringList row;
    for (int column = 0; column < 4; ++column) {
        const QModelIndex cell = list.index(1, column);
        row.append(cell.data().toString());
        const QRect place = lengths.view()->visualRect(cell);
        EXPECT_GE(place.width(), lengths.view()->fontMetrics().horizontalAdvance(row.last()));
        EXPECT_TRUE(lengths.view()->viewport()->rect().contains(place)) << column;
    }
    EXPECT_EQ(row, QStringList({"64k", "1.365", "0.732", "5.9"}));
    lengths.hidePopup();
}

}  // namespace
}  // namespace sonavex
