#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <algorithm>

#include "ui/AnalyzerRig.h"
#include "ui/ClippedTexts.h"
#include "ui/StoredExamples.h"
#include "ui/widgets/EntriesView.h"
#include "ui/widgets/ValuesTable.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;
using testing::SizeIs;

class HistoryTab : public testing::Test, public AnalyzerRig {
protected:
    // Opens the tab with its nine examples.
    void OpenTab(QSize size = {1240, 800}) {
        Open(size);
        StoreExamples(*this);
        Settle();
        QTest::keyClick(&window, Qt::Key_3, Qt::ControlModifier);
        rig.loop.DeliverSignals();
        Settle();
        view().setFocus();
    }
    ui::EntriesView& view() { return Find<ui::EntriesView>("Entries"); }
    QModelIndex Cell(int row, int column) { return view().model()->index(row, column); }
    void Click(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::mouseClick(view().viewport(), Qt::LeftButton, modifiers,
                          view().visualRect(Cell(row, 1)).center());
        Settle();
    }
    QString Text(int row, int column) { return Cell(row, column).data().toString(); }
};

TEST_F(HistoryTab, ShowsTheEntriesByDay) {
    OpenTab();
    EXPECT_EQ(Find<QTabWidget>("Tabs").currentWidget()->objectName(), "historyPage");
    ASSERT_EQ(view().model()->rowCount(), 11);
    EXPECT_EQ(Text(0, 0), "Today");
    EXPECT_EQ(Text(1, 0), "10:58:21");
    EXPECT_EQ(Text(1, 5), "-102.57");
    EXPECT_EQ(Text(2, 5), "none");
    EXPECT_EQ(Text(8, 0), "Yesterday");
    EXPECT_EQ(Find<QLabel>("lblCount").text(), "9 entries");
    Click(0);
    EXPECT_THAT(form.History.List.Selected(), IsEmpty()) << "the title of a day is not an entry";
}

TEST_F(HistoryTab, FollowsEachLetterOfTheSearch) {
    OpenTab();
    auto& search = Find<QLineEdit>("txtSearch");
    search.setFocus();
    QTest::keyClicks(&search, "caps");
    Settle();
    EXPECT_EQ(view().model()->rowCount(), 3);
    EXPECT_EQ(search.text(), "caps");
    EXPECT_TRUE(search.hasFocus());
    search.clear();
    Settle();
    EXPECT_EQ(view().model()->rowCount(), 11);
}

TEST_F(HistoryTab, ComparesTwoSelectedReadingsAsTraces) {
    OpenTab();
    Click(1);
    EXPECT_EQ(Find<QPushButton>("cmdCompare").text(), "Show as trace");
    Click(4, Qt::ControlModifier);
    EXPECT_EQ(Find<QLabel>("lblCompared").text(), "compared with 10:51:17");
    EXPECT_EQ(Find<ui::ValuesTable>("Values").rowCount(), 3);
    QTest::keyClick(&view(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(Find<QTabWidget>("Tabs").currentIndex(), 0);
    EXPECT_EQ(form.lblLegendKept.Caption(), "10:58:21");
    EXPECT_EQ(form.lblLegendKeptSecond.Caption(), "10:51:17");
    EXPECT_TRUE(Find<QLabel>("lblLegendKeptSecond").isVisible());
    Find<QPushButton>("cmdRemoveKept").click();
    Settle();
    EXPECT_EQ(form.Spectrum.KeptSecond(), nullptr);
    EXPECT_FALSE(Find<QLabel>("lblLegendKeptSecond").isVisible());
}

TEST_F(HistoryTab, EditsNotesInPlace) {
    OpenTab();
    view().setCurrentIndex(Cell(2, 8));
    QTest::keyClick(&view(), Qt::Key_F2);
    auto* const editor = view().findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "hk loose plug");
    QTest::keyClick(editor, Qt::Key_Return);
    Settle();
    Settle();
    EXPECT_EQ(form.History.List.Rows()[2].note, "hk loose plug");
    EXPECT_EQ(Text(2, 8), "hk loose plug");
}

TEST_F(HistoryTab, ANewEntryWaitsUntilANoteIsTyped) {
    OpenTab();
    const int rows = view().model()->rowCount();
    view().setCurrentIndex(Cell(2, 8));
    const std::string id = form.History.List.Rows()[2].id;
    QTest::keyClick(&view(), Qt::Key_F2);
    auto* const editor = view().findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "hk loose ");
    StoreExamples(*this);
    Settle();
    QTest::keyClicks(editor, "plug");
    QTest::keyClick(editor, Qt::Key_Return);
    Settle();
    Settle();
    EXPECT_GT(view().model()->rowCount(), rows);
    const auto edited = std::find_if(form.History.List.Rows().begin(), form.History.List.Rows().end(),
                                     [&](const HistoryList::Row& row) { return row.id == id; });
    ASSERT_NE(edited, form.History.List.Rows().end());
    EXPECT_EQ(edited->note, "hk loose plug");
}

TEST_F(HistoryTab, DeletesAfterOneQuestion) {
    OpenTab();
    Click(1);
    Click(3, Qt::ShiftModifier);
    QTest::keyClick(&view(), Qt::Key_Delete);
    Settle();
    EXPECT_EQ(rig.log.Count("AskYesNo"), 1U);
    EXPECT_EQ(Find<QLabel>("lblCount").text(), "6 entries");
}

TEST_F(HistoryTab, CopiesTheSelectedRowsByKey) {
    OpenTab();
    Click(1);
    QTest::keyClick(&view(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().contains("\n2026-11-23 10:58:21\tUSB Audio Line In 1-2"));
}

TEST_F(HistoryTab, KeepsSelectionAndPlaceWhenAnEntryIsAdded) {
    OpenTab();
    Click(4);
    const std::vector<std::string> selected = form.History.List.Selected();
    StoreExamples(*this);
    Settle();
    EXPECT_EQ(form.History.List.Selected(), selected);
    EXPECT_THAT(view().selectionModel()->selectedRows(), SizeIs(1));
}

TEST_F(HistoryTab, StoresAReadingOfTheCardByKey) {
    OpenOnCard({1240, 800});
    form.Stimulus.cmdStart.Press();
    Play(5s);
    QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
    EXPECT_THAT(stored.history.Entries(), SizeIs(1));
    EXPECT_EQ(form.Spectrum.Kept(), nullptr);
    QTest::keyClick(&window, Qt::Key_K);
    EXPECT_THAT(stored.history.Entries(), SizeIs(2));
    EXPECT_NE(form.Spectrum.Kept(), nullptr);
}

TEST_F(HistoryTab, HasItsOwnHelpPage) {
    OpenTab();
    std::optional<frmAnalyzer::Tab> asked;
    window.OnHelp = [&asked](frmAnalyzer::Tab front) { asked = front; };
    QTest::keyClick(&view(), Qt::Key_F1);
    EXPECT_EQ(asked, frmAnalyzer::Tab::kHistory);
}

TEST_F(HistoryTab, ClipsNoTextInTheSmallestWindow) {
    OpenTab({1000, 640});
    Click(1);
    Click(4, Qt::ControlModifier);
    EXPECT_THAT(ClippedTexts(window), IsEmpty());
}

}  // namespace
}  // namespace sonavex
