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

constexpr int kLegendLine = 18;
constexpr int kLegendGap = 6;       // between a line and its name
constexpr int kLegendSpacing = 22;  // between entries

// What surrounds the plot.
struct PictureTexts {
    QFont font;
    const std::vector<PictureLegend>& legend;
    QString text;
};

// Where plot and text are, in pixels before scaling.
struct PictureLayout {
    int plotTop = 0;  // below the legend
    QRect text;
    QSize whole;
};

PictureLayout LayOut(const QSize& plot, const PictureTexts& texts) {
    const QFontMetrics metrics(texts.font);
    PictureLayout layout;
    if (!texts.legend.empty()) layout.plotTop = metrics.height() + kPictureMargin;
    const int width = plot.width() - 2 * kPictureMargin;
    const QRect bounds = metrics.boundingRect(QRect(0, 0, width, 0), kPictureText, texts.text);
    const int top = layout.plotTop + plot.height() + kPictureMargin;
    layout.text = QRect(kPictureMargin, top, width, bounds.height());
    layout.whole = QSize(plot.width(), layout.text.bottom() + 1 + kPictureMargin);
    return layout;
}

void PaintLegend(QPainter& painter, const PictureTexts& texts) {
    const QFontMetrics metrics(texts.font);
    const int middle = kPictureMargin + metrics.height() / 2;
    int x = kPictureMargin;
    for (const PictureLegend& entry : texts.legend) {
        painter.setPen(entry.line);
        painter.drawLine(x, middle, x + kLegendLine, middle);
        x += kLegendLine + kLegendGap;
        painter.setPen(Theme::Current().text);
        painter.drawText(x, kPictureMargin + metrics.ascent(), entry.name);
        x += metrics.horizontalAdvance(entry.name) + kLegendSpacing;
    }
}

void PaintTexts(QPainter& painter, const PictureLayout& layout, const PictureTexts& texts) {
    painter.setFont(texts.font);
    PaintLegend(painter, texts);
    painter.setPen(Theme::Current().text);
    painter.drawText(layout.text, kPictureText, texts.text);
}

QByteArray PngContent(const PictureLayout& layout, int scale, const QSize& size, const PlotPainting& paint,
                      const PictureTexts& texts) {
    QImage plot(size * scale, QImage::Format_RGB32);
    plot.fill(Theme::Current().card);
    paint(plot, size, scale);
    QImage image(layout.whole * scale, QImage::Format_RGB32);
    image.fill(Theme::Current().card);
    {
        QPainter painter(&image);
        painter.drawImage(0, layout.plotTop * scale, plot);
        painter.scale(scale, scale);
        PaintTexts(painter, layout, texts);
    }
    image.setText("Description", texts.text);
    QByteArray content;
    QBuffer buffer(&content);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return content;
}

QByteArray PdfContent(const PictureLayout& layout, const QSize& size, const PlotPainting& paint,
                      const PictureTexts& texts) {
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
        PaintTexts(painter, layout, texts);
        painter.translate(0, layout.plotTop);
        painter.scale(1.0 / kPdfScale, 1.0 / kPdfScale);
        plot.play(&painter);
    }
    return content;
}

}  // namespace

std::string PlotPicture(ExportKind kind, const QSize& size, const QFont& font, const PlotPainting& paint,
                        const std::vector<PictureLegend>& legend, const std::vector<std::string>& lines) {
    QStringList text;
    for (const std::string& line : lines) text.append(QString::fromStdString(line));
    PictureTexts texts{font, legend, text.join('\n')};
    // In pixels, because a file has another resolution than the screen.
    texts.font.setPixelSize(QFontInfo(font).pixelSize());
    const PictureLayout layout = LayOut(size, texts);
    if (kind == ExportKind::kPdf) return PdfContent(layout, size, paint, texts).toStdString();
    const int scale = kind == ExportKind::kLargePicture ? 2 : 1;
    return PngContent(layout, scale, size, paint, texts).toStdString();
}

}  // namespace sonavex::ui
