#include "ui/HelpWindow.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <utility>

#include "ui/HelpBrowser.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kPageRole = Qt::UserRole;
constexpr int kZoomStep = 1;

QPushButton* Button(QWidget* parent, const QString& text, const QString& tip) {
    auto* const button = new QPushButton(text, parent);
    button->setToolTip(tip);
    button->setAutoDefault(false);
    return button;
}

QTreeWidgetItem* ItemOf(QTreeWidget& tree, const QString& page) {
    for (QTreeWidgetItemIterator item(&tree); *item != nullptr; ++item)
        if ((*item)->data(0, kPageRole).toString() == page) return *item;
    return nullptr;
}

}  // namespace

HelpWindow::HelpWindow(std::unique_ptr<HelpBook> book, QWidget* parent)
    : QDialog(parent), book_(std::move(book)) {
    setObjectName(QStringLiteral("HelpWindow"));
    setWindowTitle(QString::fromStdString(book_->Title()));
    setWindowFlags(Qt::Window);
    auto* const splitter = new QSplitter(this);
    auto* const left = new QWidget(splitter);
    auto* const right = new QWidget(splitter);
    BuildLeft(left);
    BuildRight(right);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    auto* const layout = new QHBoxLayout(this);
    layout->addWidget(splitter);
    AddShortcuts();
    TakeTheme();
    const int em = fontMetrics().height();
    splitter->setSizes({em * 19, em * 45});
    resize(QSize(em * 66, em * 42).boundedTo(screen()->availableSize() * 0.9));
    FollowPage();
}

HelpWindow::~HelpWindow() = default;

void HelpWindow::BuildLeft(QWidget* left) {
    search_ = new QLineEdit(left);
    search_->setPlaceholderText(tr("Search"));
    search_->setAccessibleName(tr("Search the help"));
    search_->setClearButtonEnabled(true);
    contents_ = new QTreeWidget(left);
    contents_->setHeaderHidden(true);
    contents_->setAccessibleName(tr("Contents"));
    contents_->header()->setStretchLastSection(true);
    AddChapters(book_->Contents(), contents_->invisibleRootItem());
    contents_->expandAll();
    matches_ = new QListWidget(left);
    matches_->setAccessibleName(tr("Pages found"));
    matches_->setWordWrap(true);
    matches_->setResizeMode(QListView::Adjust);
    matches_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lists_ = new QStackedWidget(left);
    lists_->addWidget(contents_);
    lists_->addWidget(matches_);
    auto* const layout = new QVBoxLayout(left);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(search_);
    layout->addWidget(lists_);
    connect(search_, &QLineEdit::textChanged, this, &HelpWindow::Search);
    connect(search_, &QLineEdit::returnPressed, this, [this] {
        if (matches_->count() > 0) matches_->setCurrentRow(0);
    });
    connect(contents_, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem* item) {
        const QString page = item == nullptr ? QString() : item->data(0, kPageRole).toString();
        if (!page.isEmpty() && page != browser_->Page()) browser_->ShowPage(page);
    });
    connect(matches_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
        const QString page = item == nullptr ? QString() : item->data(kPageRole).toString();
        if (!page.isEmpty()) browser_->ShowPage(page);
    });
}

void HelpWindow::BuildRight(QWidget* right) {
    back_ = Button(right, tr("Back"), tr("Back (Alt+Left)"));
    forward_ = Button(right, tr("Forward"), tr("Forward (Alt+Right)"));
    auto* const home = Button(right, tr("Home"), tr("First page"));
    browser_ = new HelpBrowser(right);
    browser_->setObjectName(QStringLiteral("HelpPage"));
    browser_->SetBook(*book_);
    browser_->setAccessibleName(tr("Page"));
    auto* const buttons = new QHBoxLayout;
    for (QPushButton* button : {back_, forward_, home}) buttons->addWidget(button);
    buttons->addStretch();
    auto* const layout = new QVBoxLayout(right);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(buttons);
    layout->addWidget(browser_);
    connect(back_, &QPushButton::clicked, browser_, &HelpBrowser::backward);
    connect(forward_, &QPushButton::clicked, browser_, &HelpBrowser::forward);
    connect(home, &QPushButton::clicked, this, [this] { ShowPage({}); });
    connect(browser_, &HelpBrowser::sourceChanged, this, &HelpWindow::FollowPage);
    connect(browser_, &HelpBrowser::historyChanged, this, &HelpWindow::FollowPage);
}

void HelpWindow::AddShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(QKeySequence::Back, [this] { browser_->backward(); });
    add(QKeySequence::Forward, [this] { browser_->forward(); });
    add(QKeySequence::Find, [this] { search_->setFocus(); });
    add(QKeySequence::ZoomIn, [this] { browser_->zoomIn(kZoomStep); });
    add(QKeySequence::ZoomOut, [this] { browser_->zoomOut(kZoomStep); });
}

void HelpWindow::AddChapters(const std::vector<HelpBook::Chapter>& chapters, QTreeWidgetItem* parent) {
    for (const HelpBook::Chapter& chapter : chapters) {
        auto* const item = new QTreeWidgetItem(parent, {QString::fromStdString(chapter.name)});
        item->setData(0, kPageRole, QString::fromStdString(chapter.page));
        AddChapters(chapter.chapters, item);
    }
}

void HelpWindow::Search(const QString& words) {
    matches_->clear();
    const bool searching = !words.trimmed().isEmpty();
    lists_->setCurrentWidget(searching ? static_cast<QWidget*>(matches_) : contents_);
    if (!searching) return;
    for (const HelpBook::Match& match : book_->Search(words.toStdString())) {
        auto* const item =
            new QListWidgetItem(QString::fromStdString(match.title + "\n" + match.excerpt), matches_);
        item->setData(kPageRole, QString::fromStdString(match.page));
    }
    if (matches_->count() == 0) {
        auto* const nothing = new QListWidgetItem(tr("Nothing found"), matches_);
        nothing->setFlags(Qt::NoItemFlags);
    }
}

// Updates the contents and the buttons after every change of the page.
void HelpWindow::FollowPage() {
    back_->setEnabled(browser_->isBackwardAvailable());
    forward_->setEnabled(browser_->isForwardAvailable());
    if (QTreeWidgetItem* const item = ItemOf(*contents_, browser_->Page()); item != nullptr)
        contents_->setCurrentItem(item);
}

void HelpWindow::ShowPage(const QString& page) {
    browser_->ShowPage(page.isEmpty() ? QString::fromStdString(book_->Home()) : page);
}

void HelpWindow::ShowTopic(std::int32_t topic) {
    ShowPage(QString::fromStdString(book_->PageOfTopic(topic).value_or("")));
}

void HelpWindow::ShowContents() {
    search_->clear();
    ShowPage({});
    contents_->setFocus();
}

void HelpWindow::BringForward() {
    show();
    raise();
    activateWindow();
}

void HelpWindow::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || takingTheme_) return;
    TakeTheme();
    browser_->reload();
}

void HelpWindow::TakeTheme() {
    takingTheme_ = true;
    ApplyTheme(*this);
    // Aligned with the buttons.
    search_->setMinimumHeight(back_->sizeHint().height());
    const Theme& theme = Theme::Current();
    setStyleSheet(styleSheet() +
                  QStringLiteral("QDialog#HelpWindow { background: %1; }"
                                 "QTextBrowser, QTreeWidget, QListWidget { background: %2; color: "
                                 "%3; border: 1px solid %4; border-radius: 6px; padding: 6px; }"
                                 "QTreeWidget:focus, QListWidget:focus { border-color: %5; }"
                                 "QListWidget::item { background: transparent; }"
                                 "QListWidget::item:selected { background: %5; }"
                                 "QTreeWidget::item { padding: 4px 0; }"
                                 "QTreeWidget::item:selected { background: %5; color: %6; }"
                                 "QSplitter::handle { background: transparent; }")
                      .arg(theme.window.name(), theme.card.name(), theme.text.name(), theme.border.name(),
                           theme.accent.name(), theme.onAccent.name()));
    browser_->document()->setDefaultStyleSheet(
        QStringLiteral("a { color: %1; } th { background-color: %2; text-align: left; } code, pre { "
                       "background-color: %2; } table { border-collapse: collapse; margin-top: 8px; "
                       "margin-bottom: 8px; } th, td { border: 1px solid %3; }")
            .arg(theme.accent.name(), theme.stripe.name(), theme.border.name()));
    browser_->document()->setDocumentMargin(fontMetrics().height());
    takingTheme_ = false;
}

}  // namespace sonavex::ui
