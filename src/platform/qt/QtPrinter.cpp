#include "platform/qt/QtPrinter.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QStandardPaths>
#include <system_error>
#include <utility>

#include "core/support/RuntimeError.h"
#include "platform/plain/ReplacedFile.h"

namespace sonavex {
namespace {

constexpr int kDotsPerInch = 1200;

QString Title() {
    return QStringLiteral("Sonavex report");
}

QFont PageFont(const PageSetUp& page) {
    QFont font(QString::fromStdString(page.fontName));
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    font.setKerning(false);
    font.setPointSize(page.fontSizePoints);
    return font;
}

void WriteFile(const std::string& file, const QByteArray& content) {
    ReplacedFile target(file);
    std::error_code error = target.Write({content.constData(), static_cast<std::size_t>(content.size())});
    if (!error) error = target.Commit();
    if (error) throw RuntimeError(kPrinterError, file + ": " + error.message());
}

}  // namespace

// A document of one page that is being drawn as PDF.
class QtPrinter::Document {
public:
    explicit Document(const PageSetUp& page) : writer_(&buffer_) {
        buffer_.open(QIODevice::WriteOnly);
        writer_.setTitle(Title());
        writer_.setCreator(QStringLiteral("Sonavex"));
        writer_.setResolution(kDotsPerInch);
        const QPageLayout layout(QPageSize(QSizeF(page.width, page.height), QPageSize::Inch),
                                 QPageLayout::Portrait, QMarginsF());
        if (!layout.isValid() || !writer_.setPageLayout(layout) || !painter_.begin(&writer_))
            throw RuntimeError(kPrinterError, "The page cannot be drawn.");
        painter_.setFont(PageFont(page));
        const QFontMetricsF metrics(painter_.font(), &writer_);
        stretch_ = page.characterWidth * kDotsPerInch / metrics.horizontalAdvance(u'0');
        baseline_ = (page.lineHeight * kDotsPerInch + metrics.ascent() - metrics.descent()) / 2.0;
    }

    void Text(double x, double y, std::string_view text) {
        painter_.save();
        painter_.translate(x * kDotsPerInch, y * kDotsPerInch + baseline_);
        painter_.scale(stretch_, 1.0);
        painter_.drawText(QPointF(), QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
        painter_.restore();
    }

    void Picture(double x, double y, double width, std::string_view png) {
        const QImage image =
            QImage::fromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()), "PNG");
        if (image.isNull()) throw RuntimeError(kPrinterError, "The picture cannot be drawn.");
        const double height = width * image.height() / image.width();
        painter_.drawImage(
            QRectF(x * kDotsPerInch, y * kDotsPerInch, width * kDotsPerInch, height * kDotsPerInch), image);
    }

    QByteArray Finish() {
        if (!painter_.end()) throw RuntimeError(kPrinterError, "The page cannot be drawn.");
        return buffer_.data();
    }

private:
    QBuffer buffer_;
    QPdfWriter writer_;
    QPainter painter_;
    double baseline_ = 0.0;  // dots below the top of a line
    double stretch_ = 1.0;   // scales the font to the page's character width
};

QtPrinter::QtPrinter(Ending& ending) : system_(ending) {}
QtPrinter::~QtPrinter() = default;

InstalledPrinters QtPrinter::Printers() {
    return system_.Printers();
}

void QtPrinter::SetDefaultPrinter(const std::string& name) {
    system_.SetDefaultPrinter(QString::fromStdString(name));
}

std::string QtPrinter::SuggestedFile() {
    QDir folder(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    if (!folder.exists()) folder = QDir::home();
    QString name = Title() + QStringLiteral(".pdf");
    for (int number = 2; folder.exists(name); ++number)
        name = Title() + QStringLiteral(" %1.pdf").arg(number);
    return folder.filePath(name).toStdString();
}

bool QtPrinter::FileExists(const std::string& file) {
    return QFileInfo::exists(QString::fromStdString(file));
}

void QtPrinter::Select(const PrintDestination& destination) {
    destination_ = destination;
}

void QtPrinter::BeginPage(const PageSetUp& page) {
    document_.reset();
    failure_.reset();
    try {
        document_ = std::make_unique<Document>(page);
    } catch (const RuntimeError& error) {
        failure_ = error;
        throw;
    }
}

void QtPrinter::Text(double x, double y, std::string_view text) {
    if (document_) document_->Text(x, y, text);
}

void QtPrinter::Picture(double x, double y, double width, std::string_view png) {
    if (document_) document_->Picture(x, y, width, png);
}

void QtPrinter::EndDoc() {
    if (const auto failure = std::exchange(failure_, std::nullopt); failure) throw RuntimeError(*failure);
    if (!document_) return;
    const QByteArray pdf = std::exchange(document_, nullptr)->Finish();
    if (destination_.file.empty())
        system_.Send(QString::fromStdString(destination_.printer), Title(), pdf);
    else
        WriteFile(destination_.file, pdf);
}

}  // namespace sonavex
