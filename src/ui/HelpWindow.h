#pragma once

#include <QDialog>
#include <memory>

#include "core/ports/HelpBook.h"

class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace sonavex::ui {

class HelpBrowser;

// The help window: contents, search, and pages with back and forward.
class HelpWindow : public QDialog {
    Q_OBJECT

public:
    explicit HelpWindow(std::unique_ptr<HelpBook> book, QWidget* parent = nullptr);
    ~HelpWindow() override;

    // An empty path shows the book's first page.
    void ShowPage(const QString& page);
    void ShowTopic(std::int32_t topic);
    // Shows the contents and the book's first page.
    void ShowContents();

    // Shows the window in front of other windows.
    void BringForward();

protected:
    void changeEvent(QEvent* event) override;

private:
    void BuildLeft(QWidget* left);
    void BuildRight(QWidget* right);
    void AddShortcuts();
    void AddChapters(const std::vector<HelpBook::Chapter>& chapters, QTreeWidgetItem* parent);
    void Search(const QString& words);
    void FollowPage();
    void TakeTheme();

    std::unique_ptr<HelpBook> book_;
    QLineEdit* search_ = nullptr;
    QStackedWidget* lists_ = nullptr;
    QTreeWidget* contents_ = nullptr;
    QListWidget* matches_ = nullptr;
    HelpBrowser* browser_ = nullptr;
    QPushButton* back_ = nullptr;
    QPushButton* forward_ = nullptr;
    bool takingTheme_ = false;
};

}  // namespace sonavex::ui
