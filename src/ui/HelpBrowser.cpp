#include "ui/HelpBrowser.h"

#include <optional>
#include <string>

namespace sonavex::ui {
namespace {

// Pages have addresses of a kind of their own, so that nothing else can be meant.
constexpr const char* kScheme = "book";

QUrl AddressOf(const QString& page) {
    const qsizetype mark = page.indexOf(u'#');
    QUrl address;
    address.setScheme(QLatin1String(kScheme));
    address.setPath(u'/' + (mark < 0 ? page : page.left(mark)));
    if (mark >= 0) address.setFragment(page.mid(mark + 1));
    return address;
}

// Empty for an address outside the book.
QString PageOf(const QUrl& address) {
    if (address.scheme() != QLatin1String(kScheme) || !address.host().isEmpty()) return {};
    return address.path().mid(1);
}

}  // namespace

HelpBrowser::HelpBrowser(QWidget* parent) : QTextBrowser(parent) {
    setOpenExternalLinks(false);
    setOpenLinks(true);
}

void HelpBrowser::ShowPage(const QString& page) {
    setSource(AddressOf(page));
}

QString HelpBrowser::Page() const {
    return PageOf(source());
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    const QString page = PageOf(source().resolved(name));
    if (book_ == nullptr || page.isEmpty()) return {};
    const std::optional<std::string> content = book_->Read(page.toStdString());
    if (!content) return {};
    if (type == QTextDocument::HtmlResource) return QString::fromStdString(*content);
    return QByteArray::fromStdString(*content);
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
    const QString page = PageOf(source().resolved(name));
    if (book_ == nullptr || page.isEmpty() || !book_->Read(page.toStdString())) return;
    QTextBrowser::doSetSource(name, type);
}

}  // namespace sonavex::ui
