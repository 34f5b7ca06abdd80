#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <fstream>

#include "support/ChildProcess.h"
#include "ui/PlotPicture.h"
#include "ui/widgets/Theme.h"

namespace sonavex {
namespace {

constexpr QSize kPlotSize(400, 200);

// Fills the plot.
void PaintGreen(QPaintDevice& device, const QSize& size, double scale) {
    QPainter painter(&device);
    painter.scale(scale, scale);
    painter.fillRect(QRect(QPoint(), size), Qt::green);
}

std::string Picture(ExportKind kind) {
    return ui::PlotPicture(kind, kPlotSize, QApplication::font(), PaintGreen,
                           {{QPen(Qt::red, 2), "Left, live"}, {QPen(Qt::blue, 2), "A, 10:42"}},
                           {"State: VALID", "Input: " + std::string(30, 'x') + ' ' + std::string(60, 'y')});
}

QImage ImageOf(ExportKind kind) {
    return QImage::fromData(QByteArray::fromStdString(Picture(kind)), "PNG");
}

// The first and the last row of the plot.
std::pair<int, int> PlotRows(const QImage& image) {
    int first = 0;
    while (first < image.height() && image.pixelColor(0, first) != Qt::green) ++first;
    int last = image.height() - 1;
    while (last > first && image.pixelColor(0, last) != Qt::green) --last;
    return {first, last};
}

// In the rows from top to before bottom.
bool Contains(const QImage& image, int top, int bottom, const QColor& colour) {
    for (int y = top; y < bottom; ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) == colour) return true;
    return false;
}

TEST(PlotPicture, HoldsPlotAndConditions) {
    const QImage image = ImageOf(ExportKind::kPicture);
    ASSERT_EQ(image.width(), 400);
    const auto [first, last] = PlotRows(image);
    EXPECT_EQ(last - first, 199);
    EXPECT_EQ(image.pixelColor(399, last), Qt::green);
    EXPECT_TRUE(Contains(image, 0, first, Qt::red));
    EXPECT_TRUE(Contains(image, 0, first, Qt::blue));
    EXPECT_TRUE(Contains(image, last + 1, image.height(), ui::Theme::Current().text));
    EXPECT_TRUE(image.text("Description").startsWith("State: VALID\nInput: xxx"));
}

TEST(PlotPicture, HasTwiceThePixels) {
    const QImage image = ImageOf(ExportKind::kLargePicture);
    EXPECT_EQ(image.size(), 2 * ImageOf(ExportKind::kPicture).size());
    const auto [first, last] = PlotRows(image);
    EXPECT_EQ(last - first, 399);
    EXPECT_EQ(image.pixelColor(799, last), Qt::green);
    EXPECT_TRUE(Contains(image, last + 1, image.height(), ui::Theme::Current().text));
}

TEST(PlotPicture, IsAPdfFileWithText) {
    const PrivateFolder folder;
    const std::string pdf = folder.Path() / "plot.pdf";
    std::ofstream(pdf, std::ios::binary) << Picture(ExportKind::kPdf);
    const std::string text = RunProgram({"pdftotext", "-layout", pdf, "-"}, {}, std::chrono::seconds(30));
    EXPECT_NE(text.find("State: VALID"), std::string::npos) << text;
    EXPECT_NE(text.find("A, 10:42"), std::string::npos) << text;
}

}  // namespace
}  // namespace sonavex
