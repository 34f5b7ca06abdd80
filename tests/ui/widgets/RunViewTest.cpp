#include <gtest/gtest.h>

#include <QImage>
#include <QTest>
#include <cmath>
#include <vector>

#include "support/QtWait.h"
#include "ui/widgets/RunPainter.h"
#include "ui/widgets/RunView.h"
#include "ui/widgets/Theme.h"

namespace sonavex {
namespace {

RunPointResult ShownPoint(double hertz, double thdDb) {
    RunPointResult result;
    result.point = {hertz, hertz, -1};
    result.reading.frequencyHz = {hertz, 1e-4};
    result.reading.thdDb = {thdDb, 0.1};
    result.reading.thdnDb = {thdDb + 4, 0.1};
    result.reading.levelDbfs = {-1.02, 0.001};
    result.reading.harmonics = {{2, {thdDb - 3, 0.1}, {}}, {3, {thdDb - 8, 0.1}, {}}};
    return result;
}

class RunViews : public testing::Test {
protected:
    RunViews() {
        view.resize(584, 520);
        for (double hertz = 20; hertz < 20001; hertz *= std::sqrt(10.0))
            results.push_back(ShownPoint(hertz, -100 + std::log10(hertz)));
        results[2] = {};
        results[2].point = {200, 200, -1};
        results[2].fault = {"not settled", ""};
        for (const RunPointResult& result : results) points.push_back(result.point);
        limits = {{{RunQuantity::Kind::kThd}, std::nullopt, LimitCurve(-90.0)}};
        plot.Show({RunAxis::kFrequency, points, results, limits, 20000, {}, {}});
        view.Show(plot);
        view.show();
    }

    QImage Grabbed() {
        WaitInQt(std::chrono::milliseconds(50));
        return view.grab().toImage();
    }
    static int PixelsOf(const QImage& picture, const QColor& colour, const QRect& part) {
        int count = 0;
        for (int y = part.top(); y <= part.bottom(); ++y)
            for (int x = part.left(); x <= part.right(); ++x)
                if (picture.pixelColor(x, y) == colour) ++count;
        return count;
    }
    QPointF At(double hertz, double decibels) const {
        const QRectF area = view.PlotArea();
        return {area.left() + plot.Shown().across.FractionOf(std::log10(hertz)) * area.width(),
                area.bottom() - plot.Shown().ratios.FractionOf(decibels) * area.height()};
    }
    QRect Around(double hertz, double decibels) const {
        const QPoint centre = At(hertz, decibels).toPoint();
        return {centre - QPoint(3, 3), centre + QPoint(3, 3)};
    }

    std::vector<RunPointResult> results;
    std::vector<RunPoint> points;
    std::vector<RunLimit> limits;
    RunPlot plot;
    ui::RunView view;
};

TEST_F(RunViews, DrawsEachQuantityInItsColour) {
    const QImage picture = Grabbed();
    const ui::Theme& theme = ui::Theme::Current();
    const double thd = -100 + std::log10(20.0);
    EXPECT_GT(PixelsOf(picture, theme.accent, Around(20, thd)), 5);
    EXPECT_GT(PixelsOf(picture, theme.second, Around(20, thd + 4)), 5);
    EXPECT_GT(PixelsOf(picture, theme.overload, Around(2000, -90).adjusted(-10, 0, 10, 0)), 8);
    const QRect all = view.PlotArea().toRect();
    EXPECT_GT(PixelsOf(picture, ui::RunPainter::LineOf(RunSeries::kSecond).color(), all), 50);
    EXPECT_GT(PixelsOf(picture, ui::RunPainter::LineOf(RunSeries::kThird).color(), all), 50);
}

TEST_F(RunViews, DrawsAVoidPointHollowOnTheAxisAndInNoCurve) {
    const QImage picture = Grabbed();
    const QPoint mark(static_cast<int>(At(200, 0).x()), static_cast<int>(view.PlotArea().bottom()));
    EXPECT_EQ(picture.pixelColor(mark), ui::Theme::Current().stripe);
    EXPECT_GT(PixelsOf(picture, ui::Theme::Current().text, QRect(mark - QPoint(6, 6), mark + QPoint(6, 6))),
              3);
    const QRect column(mark.x() - 2, static_cast<int>(view.PlotArea().top()), 5,
                       static_cast<int>(view.PlotArea().height()));
    EXPECT_EQ(PixelsOf(picture, ui::Theme::Current().accent, column), 0);
}

TEST_F(RunViews, HidesASeries) {
    plot.SetVisible(RunSeries::kThdn, false);
    view.Show(plot);
    EXPECT_EQ(PixelsOf(Grabbed(), ui::Theme::Current().second, view.PlotArea().toRect()), 0);
}

TEST_F(RunViews, ReportsClicksAndKeys) {
    double clicked = -1;
    int stepped = 0;
    QObject::connect(&view, &ui::RunView::Clicked, [&clicked](double x) { clicked = x; });
    QObject::connect(&view, &ui::RunView::Stepped, [&stepped](int steps) { stepped += steps; });
    const QRectF area = view.PlotArea();
    QTest::mouseClick(&view, Qt::LeftButton, {},
                      QPoint(static_cast<int>(area.left() + area.width() / 4), 200));
    EXPECT_NEAR(clicked, 0.25, 0.01);
    QTest::keyClick(&view, Qt::Key_Right);
    QTest::keyClick(&view, Qt::Key_Right);
    QTest::keyClick(&view, Qt::Key_Left);
    EXPECT_EQ(stepped, 1);
    EXPECT_EQ(view.accessibleDescription(), "7 points measured, 1 of them void.");
}

TEST_F(RunViews, PaintsOnAnImageOfAnotherSize) {
    QImage image(800, 600, QImage::Format_RGB32);
    image.fill(Qt::black);
    view.PaintOn(image, {400, 300}, 2);
    EXPECT_GT(PixelsOf(image, ui::Theme::Current().accent, image.rect()), 100);
    EXPECT_EQ(image.pixelColor(790, 590), ui::Theme::Current().card);
}

TEST_F(RunViews, ItsTextsStayInsideThePicture) {
    plot.SetConditions("THD at most -90 dB, 20 Hz to 20 kHz: 7 points over, worst 3.20 dB at 20 Hz", true);
    for (const QSize& size : {QSize(584, 520), QSize(320, 240)}) {
        view.resize(size);
        view.Show(plot);
        const QImage picture = Grabbed();
        const QColor card = ui::Theme::Current().card;
        for (int y = 0; y < picture.height(); ++y) {
            EXPECT_EQ(picture.pixelColor(0, y), card) << y;
            EXPECT_EQ(picture.pixelColor(picture.width() - 1, y), card) << y;
        }
        for (int x = 0; x < picture.width(); ++x) EXPECT_EQ(picture.pixelColor(x, 0), card) << x;
    }
}

}  // namespace
}  // namespace sonavex
