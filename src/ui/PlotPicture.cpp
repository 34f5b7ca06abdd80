#include "ui/PlotPicture.h"

#include <QBuffer>
#include <QFontMetrics>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPicture>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kPictureMargin = 12;
// Points are wrapped into lines with this flag.
constexpr int kPictureText = Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop;
// The trace inside a PDF file is an image with as many times the pixels of the window.
constexpr int kPdfScale = 3;

// Where plot and text are, in pixels before scaling.
struct PictureLayout {
    QRect text;
    QSize whole;
};

PictureLayout LayOut(const QSize& plot, const QFont& font, const QString& text) {
    const int width = plot.width() - 2 * kPictureMargin;
    const QRect bounds = QFontMetrics(font).boundingRect(QRect(0, 0, width, 0), kPictureText, text);
    const QRect place(kPictureMargin, plot.height() + kPictureMargin, width, bounds.height());
    return {place, QSize(plot.width(), place.bottom() + 1 + kPictureMargin)};
}

void PaintPictureText(QPainter& painter, const PictureLayout& layout, const QFont& font,
                      const QString& text) {
    painter.setFont(font);
    painter.setPen(Theme::Current().text);
    painter.drawText(layout.text, kPictureText, text);
}

QByteArray PngContent(const PictureLayout& layout, int scale, const QSize& size, const QFont& font,
                      const PlotPainting& paint, const QString& text) {
    QImage image(layout.whole * scale, QImage::Format_RGB32);
    image.fill(Theme::Current().card);
    paint(image, size, scale);
    {
        QPainter painter(&image);
        painter.scale(scale, scale);
        PaintPictureText(painter, layout, font, text);
    }
    image.setText("Description", text);
    QByteArray content;
    QBuffer buffer(&content);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return content;
}

QByteArray PdfContent(const PictureLayout& layout, const QSize& size, const QFont& font,
                      const PlotPainting& paint, const QString& text) {
    QPicture plot;
    paint(plot, size, kPdfScale);
    QByteArray content;
    QBuffer buffer(&content);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setCreator("Sonavex");
        writer.setTitle("Sonavex");
        writer.setPageSize(QPageSize(QSizeF(layout.whole), QPageSize::Point, {}, QPageSize::ExactMatch));
        writer.setPageMargins(QMarginsF());
        QPainter painter(&writer);
        const double dotsPerPixel = static_cast<double>(writer.width()) / layout.whole.width();
        painter.scale(dotsPerPixel, dotsPerPixel);
        painter.fillRect(QRect(QPoint(), layout.whole), Theme::Current().card);
        PaintPictureText(painter, layout, font, text);
        painter.scale(1.0 / kPdfScale, 1.0 / kPdfScale);
        plot.play(&painter);
    }
    return content;
}

}  // namespace

std::string PlotPicture(ExportKind kind, const QSize& size, const QFont& font, const PlotPainting& paint,
                        const std::vector<std::string>& lines) {
    QStringList texts;
    for (const std::string& line : lines) texts.append(QString::fromStdString(line));
    const QString text = texts.join('\n');
    // In pixels, because a file has another resolution than the screen.
    QFont pixels = font;
    pixels.setPixelSize(QFontInfo(font).pixelSize());
    const PictureLayout layout = LayOut(size, pixels, text);
    if (kind == ExportKind::kPdf) return PdfContent(layout, size, pixels, paint, text).toStdString();
    const int scale = kind == ExportKind::kLargePicture ? 2 : 1;
    return PngContent(layout, scale, size, pixels, paint, text).toStdString();
}

}  // namespace sonavex::ui
