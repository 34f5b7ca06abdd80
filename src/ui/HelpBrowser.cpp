#include "ui/HelpBrowser.h"

#include <QImage>
#include <QRegularExpression>
#include <QResizeEvent>
#include <QScrollBar>
#include <algorithm>
#include <optional>
#include <string>

namespace sonavex::ui {
namespace {

// A private URL scheme, so that no other resource can be addressed.
constexpr const char* kScheme = "book";
constexpr int kLeastPicture = 64;  // dots
// The book's pictures have twice the resolution of their displayed size.
constexpr int kPictureDensity = 2;

QUrl AddressOf(const QString& page) {
    const qsizetype mark = page.indexOf(u'#');
    QUrl address;
    address.setScheme(QLatin1String(kScheme));
    address.setPath(u'/' + (mark < 0 ? page : page.left(mark)));
    if (mark >= 0) address.setFragment(page.mid(mark + 1));
    return address;
}

// Page of an address; empty for an address outside the book.
QString PageOf(const QUrl& address) {
    if (address.scheme() != QLatin1String(kScheme) || !address.host().isEmpty()) return {};
    return address.path().mid(1);
}

// Removes the widths of the pictures, because FittedPicture scales them.
QString WithoutWidths(QString html) {
    static const QRegularExpression width(QStringLiteral("(<img\\b[^>]*?)\\s+width=\"\\d+\""));
    return html.replace(width, QStringLiteral("\\1"));
}

// Placeholder for a missing picture: one transparent dot.
QImage NoPicture() {
    QImage picture(1, 1, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    return picture;
}

}  // namespace

HelpBrowser::HelpBrowser(QWidget* parent) : QTextBrowser(parent) {
    setOpenExternalLinks(false);
    setOpenLinks(true);
    // A scroll bar that appears later would make pictures too wide.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

void HelpBrowser::ShowPage(const QString& page) {
    setSource(AddressOf(page));
}

QString HelpBrowser::Page() const {
    return PageOf(source());
}

// Always returns a resource: otherwise Qt looks for pictures and style sheets in the file system.
QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    const QString page = PageOf(source().resolved(name));
    std::optional<std::string> content;
    if (book_ != nullptr && !page.isEmpty()) content = book_->Read(page.toStdString());
    if (type == QTextDocument::HtmlResource)
        return content ? QVariant(WithoutWidths(QString::fromStdString(*content))) : QVariant();
    if (type != QTextDocument::ImageResource) return QByteArray("");
    return FittedPicture(QByteArray::fromStdString(content.value_or("")));
}

QImage HelpBrowser::FittedPicture(const QByteArray& content) const {
    // Full colour, because scaling an indexed picture produces artefacts.
    QImage picture = QImage::fromData(content).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull()) return NoPicture();
    const double margins = 2.0 * document()->documentMargin() + 4.0;
    const int room = static_cast<int>((viewport()->width() - margins) * devicePixelRatioF());
    const int width = static_cast<int>(picture.width() * devicePixelRatioF() / kPictureDensity);
    if (room > kLeastPicture)
        picture = picture.scaledToWidth(std::min(room, width), Qt::SmoothTransformation);
    picture.setDevicePixelRatio(devicePixelRatioF());
    return picture;
}

// Scales the pictures to the new width after the pending layout.
void HelpBrowser::resizeEvent(QResizeEvent* event) {
    QTextBrowser::resizeEvent(event);
    if (event->size().width() == event->oldSize().width() || refitting_) return;
    refitting_ = true;
    QMetaObject::invokeMethod(
        this, [this] { Refit(); }, Qt::QueuedConnection);
}

// Keeps the reading position.
void HelpBrowser::Refit() {
    refitting_ = false;
    if (source().isEmpty()) return;
    const QScrollBar& bar = *verticalScrollBar();
    const double place = bar.maximum() > 0 ? static_cast<double>(bar.value()) / bar.maximum() : 0.0;
    reload();
    verticalScrollBar()->setValue(static_cast<int>(place * bar.maximum()));
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
    const QString page = PageOf(source().resolved(name));
    if (book_ == nullptr || page.isEmpty() || !book_->Read(page.toStdString())) return;
    QTextBrowser::doSetSource(name, type);
}

}  // namespace sonavex::ui
