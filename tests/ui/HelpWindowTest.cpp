#include <gmock/gmock.h>

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "platform/chm/ChmHelpBook.h"
#include "support/CallLog.h"
#include "support/Recorders.h"
#include "ui/HelpBrowser.h"
#include "ui/HelpViewer.h"
#include "ui/HelpWindow.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

std::unique_ptr<HelpBook> OpenBook(const std::string& file) {
    return std::make_unique<ChmHelpBook>(file);
}

class HelpWindowTest : public testing::Test {
protected:
    template <class Widget>
    Widget& Find() {
        auto* const widget = viewer.Open()->findChild<Widget*>();
        if (widget == nullptr) throw std::runtime_error("no such widget");
        return *widget;
    }
    ui::HelpBrowser& Browser() { return Find<ui::HelpBrowser>(); }
    QPushButton& Button(const QString& text) {
        for (auto* button : viewer.Open()->findChildren<QPushButton*>())
            if (button->text() == text) return *button;
        throw std::runtime_error("no such button");
    }
    void Type(const QString& words) {
        Find<QLineEdit>().setFocus();
        QTest::keyClicks(&Find<QLineEdit>(), words);
    }

    CallLog log;
    RecordingDialogs dialogs{log};
    std::string file = SONAVEX_HELP_FILE;
    ui::HelpViewer viewer{dialogs, [this] { return file; }, OpenBook};
};

TEST_F(HelpWindowTest, ShowsTheContentsAndTheFirstPage) {
    viewer.ShowContents();
    ASSERT_NE(viewer.Open(), nullptr);
    EXPECT_TRUE(viewer.Open()->isVisible());
    EXPECT_EQ(viewer.Open()->windowTitle(), "Sonavex Help");
    EXPECT_EQ(Browser().Page(), "index.html");
    EXPECT_TRUE(Browser().toPlainText().contains("audio test instrument"));
    auto& contents = Find<QTreeWidget>();
    EXPECT_EQ(contents.topLevelItemCount(), 6);
    EXPECT_EQ(contents.currentItem()->text(0), "Sonavex");
    EXPECT_EQ(contents.topLevelItem(1)->child(0)->text(0), "Getting started with a loop cable");
}

TEST_F(HelpWindowTest, ShowsTheTopicsOfTheDialogs) {
    viewer.ShowTopic(help_topic::kSoundDeviceError);
    EXPECT_EQ(Browser().Page(), "error.html");
    EXPECT_EQ(Find<QTreeWidget>().currentItem()->text(0), "Sound device errors");
    viewer.ShowTopic(help_topic::kSoundDevices);
    EXPECT_EQ(Browser().Page(), "devices.html");
    viewer.ShowTopic(99999);
    EXPECT_EQ(Browser().Page(), "index.html");
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

TEST_F(HelpWindowTest, ShowsThePageOfTheChapterThatIsSelected) {
    viewer.ShowContents();
    auto& contents = Find<QTreeWidget>();
    contents.setCurrentItem(contents.topLevelItem(2)->child(1));
    EXPECT_EQ(Browser().Page(), "limits.html");
    contents.setCurrentItem(contents.topLevelItem(3));
    EXPECT_EQ(Browser().Page(), "limits.html") << "a heading has no page";
}

TEST_F(HelpWindowTest, GoesBackAndForward) {
    viewer.ShowContents();
    EXPECT_FALSE(Button("Back").isEnabled());
    viewer.ShowTopic(305);
    EXPECT_TRUE(Button("Back").isEnabled());
    Button("Back").click();
    EXPECT_EQ(Browser().Page(), "index.html");
    EXPECT_FALSE(Button("Back").isEnabled());
    Button("Forward").click();
    EXPECT_EQ(Browser().Page(), "error.html");
    Button("Home").click();
    EXPECT_EQ(Browser().Page(), "index.html");
}

TEST_F(HelpWindowTest, FindsPages) {
    viewer.ShowContents();
    Type("baseline leakage");
    auto& matches = Find<QListWidget>();
    ASSERT_GE(matches.count(), 1);
    EXPECT_TRUE(matches.item(0)->text().startsWith("The baseline\n"));
    QTest::keyClick(&Find<QLineEdit>(), Qt::Key_Return);
    EXPECT_EQ(Browser().Page(), "baseline.html");
    Find<QLineEdit>().clear();
    EXPECT_TRUE(Find<QTreeWidget>().isVisible());
    Type("unicorn");
    ASSERT_EQ(matches.count(), 1);
    EXPECT_EQ(matches.item(0)->text(), "Nothing found");
    QTest::keyClick(&Find<QLineEdit>(), Qt::Key_Return);
    EXPECT_EQ(Browser().Page(), "baseline.html");
}

TEST_F(HelpWindowTest, LoadsPicturesOfTheBook) {
    viewer.ShowContents();
    const auto picture = [&] {
        return Browser().loadResource(QTextDocument::ImageResource, QUrl("meter.png")).value<QImage>();
    };
    viewer.Open()->resize(1600, 900);
    EXPECT_EQ(picture().width(), 720);
    EXPECT_EQ(picture().depth(), 32);
    viewer.Open()->resize(700, 500);
    EXPECT_GT(picture().width(), 100);
    EXPECT_LT(picture().width(), Browser().viewport()->width());
}

// Fixed widths in the page would not follow the window.
TEST_F(HelpWindowTest, FitsPicturesByItself) {
    viewer.ShowContents();
    for (const char* page : {"index.html", "start.html", "limits.html", "generator.html"}) {
        const QString html = Browser().loadResource(QTextDocument::HtmlResource, QUrl(page)).toString();
        EXPECT_TRUE(html.contains("<img src=")) << page;
        EXPECT_FALSE(html.contains(" width=")) << page;
        EXPECT_TRUE(html.contains(" alt=")) << page;
    }
}

TEST_F(HelpWindowTest, ShowsEachPageOnceWhateverTheSize) {
    viewer.ShowContents();
    for (const int width : {700, 1200, 900}) {
        viewer.Open()->resize(width, 500);
        viewer.ShowTopic(help_topic::kSoundDevices);
        QApplication::processEvents();
        EXPECT_EQ(Browser().toPlainText().count("Sound devices\n"), 1);
        EXPECT_EQ(Browser().toPlainText().count("Direct access\n"), 1);
    }
}

TEST_F(HelpWindowTest, LoadsNothingFromOutsideTheBook) {
    viewer.ShowContents();
    for (const char* address :
         {"file:///etc/passwd", "/etc/passwd", "https://sonavex.example/a.png", "../chain.svg", "qrc:/x.png",
          "data:text/html,x", "book://host/index.html", "missing.html"}) {
        // Qt would open the file itself if no resource were returned.
        const QVariant picture = Browser().loadResource(QTextDocument::ImageResource, QUrl(address));
        EXPECT_EQ(picture.value<QImage>().size(), QSize(1, 1)) << address;
        const QVariant style = Browser().loadResource(QTextDocument::StyleSheetResource, QUrl(address));
        EXPECT_TRUE(style.isValid() && style.toByteArray().isEmpty()) << address;
        EXPECT_FALSE(Browser().loadResource(QTextDocument::HtmlResource, QUrl(address)).isValid()) << address;
        Browser().setSource(QUrl(address));
        EXPECT_EQ(Browser().Page(), "index.html") << address;
    }
}

TEST_F(HelpWindowTest, IsOneWindow) {
    viewer.ShowContents();
    const ui::HelpWindow* const first = viewer.Open();
    viewer.Open()->close();
    viewer.ShowTopic(305);
    EXPECT_EQ(viewer.Open(), first);
    EXPECT_TRUE(first->isVisible());
}

TEST_F(HelpWindowTest, BelongsToTheModalDialogThatAsksForIt) {
    viewer.ShowContents();
    {
        QDialog modal;
        modal.setModal(true);
        modal.show();
        viewer.ShowTopic(305);
        ASSERT_NE(viewer.Open(), nullptr);
        EXPECT_EQ(viewer.Open()->parentWidget(), &modal);
        EXPECT_EQ(Browser().Page(), "error.html");
    }
    EXPECT_EQ(viewer.Open(), nullptr);
    viewer.ShowContents();
    EXPECT_EQ(viewer.Open()->parentWidget(), nullptr);
}

TEST_F(HelpWindowTest, ClosesWithEscape) {
    viewer.ShowContents();
    QTest::keyClick(viewer.Open(), Qt::Key_Escape);
    EXPECT_FALSE(viewer.Open()->isVisible());
}

TEST_F(HelpWindowTest, SaysWhichFileCannotBeShown) {
    file = "/nowhere/Sonavex.chm";
    viewer.ShowContents();
    viewer.ShowTopic(305);
    EXPECT_EQ(viewer.Open(), nullptr);
    EXPECT_THAT(log.Lines(), ElementsAre("Message information The help file '/nowhere/Sonavex.chm' cannot be "
                                         "shown.\r\rThe file cannot be read.",
                                         "Message information The help file '/nowhere/Sonavex.chm' cannot be "
                                         "shown.\r\rThe file cannot be read."));
    file = SONAVEX_HELP_FILE;
    viewer.ShowContents();
    EXPECT_NE(viewer.Open(), nullptr);
}

}  // namespace
}  // namespace sonavex
