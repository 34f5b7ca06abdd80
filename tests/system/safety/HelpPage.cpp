#include "system/safety/HelpPage.h"

#include <QApplication>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QUrl>
#include <iostream>
#include <memory>

#include "support/Files.h"
#include "ui/HelpBrowser.h"
#include "ui/HelpWindow.h"

namespace sonavex {
namespace {

constexpr const char* kHelpPageCommand = "--show-help-page";
constexpr const char* kAddressCommand = "--open-address";
constexpr const char* kPage = "page.html";
constexpr int kMostLinks = 40;

class OnePage : public HelpBook {
public:
    explicit OnePage(std::string text) : text_(std::move(text)) {}
    const std::string& Title() const override { return title_; }
    const std::string& Home() const override { return page_; }
    const std::vector<Chapter>& Contents() const override { return contents_; }
    std::optional<std::string> PageOfTopic(std::int32_t) const override { return std::nullopt; }
    std::optional<std::string> Read(const std::string& path) const override {
        if (path == page_) return text_;
        return std::nullopt;
    }
    std::vector<Match> Search(std::string_view) const override { return {}; }

private:
    std::string text_;
    std::string title_ = "Book";
    std::string page_ = kPage;
    std::vector<Chapter> contents_{{"Page", kPage, {}}};
};

void Type(QWidget& widget, int key) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    }
    QApplication::processEvents();
}

int Show(const std::string& text) {
    ui::HelpWindow window(std::make_unique<OnePage>(text));
    window.ShowContents();
    window.show();
    QApplication::processEvents();
    auto& browser = *window.findChild<ui::HelpBrowser*>();
    browser.setFocus();
    int links = 0;
    for (int i = 0; i < kMostLinks; ++i) {
        Type(browser, Qt::Key_Tab);
        if (!browser.textCursor().hasSelection()) continue;
        ++links;
        Type(browser, Qt::Key_Return);
        if (browser.Page() != QLatin1String(kPage)) std::cout << "left for another page" << std::endl;
    }
    // Every size causes a new layout.
    window.resize(900, 700);
    QApplication::processEvents();
    window.grab();
    std::cout << browser.toPlainText().simplified().toStdString() << '\n'
              << (links > 0 ? "links followed" : "no links") << std::endl;
    return 0;
}

}  // namespace

Arguments ShowHelpPage(const std::filesystem::path& page, const std::filesystem::path& inFolder) {
    return {ThisProgram(), kHelpPageCommand, page.string(), inFolder.string()};
}

Arguments OpenAddress(const std::string& address) {
    return {ThisProgram(), kAddressCommand, address};
}

std::optional<int> RunShowHelpPage(int argc, char** argv) {
    if (argc != 4 || argv[1] != std::string(kHelpPageCommand)) return std::nullopt;
    const QApplication application(argc, argv);
    const std::string text = FileText(argv[2]);
    std::filesystem::current_path(argv[3]);
    return Show(text);
}

std::optional<int> RunOpenAddress(int argc, char** argv) {
    if (argc != 3 || argv[1] != std::string(kAddressCommand)) return std::nullopt;
    const QApplication application(argc, argv);
    return QDesktopServices::openUrl(QUrl(QString::fromUtf8(argv[2]))) ? 0 : 1;
}

}  // namespace sonavex
