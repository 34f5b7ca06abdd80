#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <fstream>

#include "support/ChildProcess.h"
#include "ui/PlotPicture.h"

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
                           {"State: VALID", "Input: " + std::string(30, 'x') + ' ' + std::string(60, 'y')});
}

QImage ImageOf(ExportKind kind) {
    return QImage::fromData(QByteArray::fromStdString(Picture(kind)), "PNG");
}

bool AnyInk(const QImage& image, int top) {
    for (int y = top; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != image.pixel(0, image.height() - 1)) return true;
    return false;
}

TEST(PlotPicture, HoldsPlotAndConditions) {
    const QImage image = ImageOf(ExportKind::kPicture);
    ASSERT_EQ(image.width(), 400);
    ASSERT_GT(image.height(), 200);
    EXPECT_EQ(image.pixelColor(399, 199), Qt::green);
    EXPECT_NE(image.pixelColor(399, 200), Qt::green);
    EXPECT_TRUE(AnyInk(image, 201));
    EXPECT_TRUE(image.text("Description").startsWith("State: VALID\nInput: xxx"));
}

TEST(PlotPicture, HasTwiceThePixels) {
    const QImage image = ImageOf(ExportKind::kLargePicture);
    EXPECT_EQ(image.size(), 2 * ImageOf(ExportKind::kPicture).size());
    EXPECT_EQ(image.pixelColor(799, 399), Qt::green);
    EXPECT_TRUE(AnyInk(image, 402));
}

TEST(PlotPicture, IsAPdfFileWithText) {
    const PrivateFolder folder;
    const std::string pdf = folder.Path() / "plot.pdf";
    std::ofstream(pdf, std::ios::binary) << Picture(ExportKind::kPdf);
    const std::string text = RunProgram({"pdftotext", "-layout", pdf, "-"}, {}, std::chrono::seconds(30));
    EXPECT_NE(text.find("State: VALID"), std::string::npos) << text;
}

}  // namespace
}  // namespace sonavex
