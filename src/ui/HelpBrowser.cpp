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

// Pages have addresses of a kind of their own, so that nothing else can be meant.
constexpr const char* kScheme = "book";
constexpr int kLeastPicture = 64;  // dots
// A book's pictures have so many dots for one of the size that they are shown in.
constexpr int kPictureDensity = 2;

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

// The page without the widths of its pictures: they are fitted here.
QString WithoutWidths(QString html) {
    static const QRegularExpression width(QStringLiteral("(<img\\b[^>]*?)\\s+width=\"\\d+\""));
    return html.replace(width, QStringLiteral("\\1"));
}

// In place of one that cannot be shown: a single clear dot.
QImage NoPicture() {
    QImage picture(1, 1, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    return picture;
}

}  // namespace

HelpBrowser::HelpBrowser(QWidget* parent) : QTextBrowser(parent) {
    setOpenExternalLinks(false);
    setOpenLinks(true);
    // Pictures that fit must not cease to fit by its coming.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

void HelpBrowser::ShowPage(const QString& page) {
    setSource(AddressOf(page));
}

QString HelpBrowser::Page() const {
    return PageOf(source());
}

// Without an answer the toolkit would look for a picture or a style sheet among the files of this machine,
// so there is always one.
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
    // In full colours: scaling would scatter dots over a picture of few.
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

// The pictures follow the width, once the page that may be under way is laid out.
void HelpBrowser::resizeEvent(QResizeEvent* event) {
    QTextBrowser::resizeEvent(event);
    if (event->size().width() == event->oldSize().width() || refitting_) return;
    refitting_ = true;
    QMetaObject::invokeMethod(
        this, [this] { Refit(); }, Qt::QueuedConnection);
}

// The reader stays at the same place.
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
