#include "spreadsheet/print/GlyphPictures.h"

#include "spreadsheet/print/PageText.h"

#include <gtest/gtest.h>
#include <QPainter>

#include <algorithm>

namespace spreadsheet {
namespace {

const QString words = QStringLiteral("应收账款 Total fjAV 1,234.50");

struct Setting {
    FontRequest font;
    QRgb colour = 0xFF000000, ground = 0xFFFFFFFF;
    double scale = 1; ///< of the painter
    double twip = 1.0 / 15;
    QPointF at{20, 40}; ///< in the picture
};

enum class By { us, toolkit };

QImage drawn(const Setting& setting, By by)
{
    QImage picture(300, 80, QImage::Format_RGB32);
    picture.fill(setting.ground);
    PageText text(nullptr, setting.twip);
    const TextLine line = text.lines(words, text.font(setting.font)).front();
    QPainter painter(&picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(setting.scale, setting.scale);
    const QPointF baseline = setting.at / setting.scale;
    if (by == By::us)
        text.draw(painter, baseline, line, QColor::fromRgba(setting.colour));
    painter.setPen(QColor::fromRgba(setting.colour));
    if (by == By::toolkit)
        for (const QGlyphRun& run : line.runs)
            painter.drawGlyphRun(baseline, run);
    return picture;
}

struct Difference {
    int most = 0;
    qint64 inked = 0, all = 0; ///< sums of grey
};

Difference difference(const QImage& ours, const QImage& theirs, QRgb ground)
{
    Difference difference;
    for (int y = 0; y < ours.height(); ++y)
        for (int x = 0; x < ours.width(); ++x) {
            const int grey = qGray(theirs.pixel(x, y)), off = std::abs(qGray(ours.pixel(x, y)) - grey);
            difference.most = std::max(difference.most, off);
            difference.all += off;
            difference.inked += std::abs(grey - qGray(ground));
        }
    return difference;
}

/// Over white the same to the eye's last step; over other colours edges may be a little heavier.
TEST(GlyphPictures, LettersAreTheToolkits)
{
    constexpr QRgb white = 0xFFFFFFFF, black = 0xFF000000;
    const struct {
        const char* name;
        Setting setting;
        int most;       ///< steps of grey
        double largest; ///< of all ink
    } cases[] = {
        {"plain", {{.family = "宋体"}}, 3, 0.01},
        {"bold", {{.family = "黑体", .points = 12, .bold = true}}, 3, 0.01},
        {"slanted", {{.family = "宋体", .points = 12, .italic = true}}, 3, 0.01},
        {"curves of the second degree", {{.family = "WenQuanYi Zen Hei", .points = 11}}, 3, 0.01},
        {"at a part of a pixel", {{.family = "宋体"}, black, white, 1, 1.0 / 15, {20.5, 40}}, 3, 0.01},
        {"a page's scale", {{.family = "宋体"}, black, white, 0.0625, 1, {20, 40}}, 3, 0.01},
        {"another scale", {{.family = "宋体"}, black, white, 0.08, 1, {20, 40}}, 3, 0.01},
        {"red", {{.family = "宋体"}, 0xFFC00000}, 6, 0.03},
        {"white on blue", {{.family = "宋体"}, white, 0xFF2040A0}, 70, 0.25},
        {"black on grey", {{.family = "宋体"}, black, 0xFFD0D0D0}, 30, 0.15},
        {"half transparent", {{.family = "宋体"}, 0x80000000}, 0, 0},
        {"large", {{.family = "宋体", .points = 40}}, 0, 0},
    };
    for (const auto& [name, setting, most, largest] : cases) {
        SCOPED_TRACE(name);
        const auto [off, inked, all] =
            difference(drawn(setting, By::us), drawn(setting, By::toolkit), setting.ground);
        EXPECT_GT(inked, 10'000);
        EXPECT_LE(off, most);
        EXPECT_LE(static_cast<double>(all), largest * static_cast<double>(inked));
    }
}

/// Pictures that were scrolled and drawn in part must fit those drawn as a whole.
TEST(GlyphPictures, ATextIsAlikeAtEveryWholePixel)
{
    for (const double scale : {1.0, 0.1, 0.7})
        for (const double part : {0.0, 0.125, 0.25, 0.3, 0.5, 0.875}) {
            Setting setting{{.family = "宋体"}};
            setting.scale = scale;
            setting.twip /= scale;
            setting.at = {20 + part, 30};
            const QImage here = drawn(setting, By::us);
            for (const QPoint step : {QPoint(1, 0), QPoint(17, 3), QPoint(4, 29)}) {
                setting.at = QPointF(20 + part, 30) + step;
                EXPECT_EQ(drawn(setting, By::us).copy(QRect(step, QSize(280, 50))), here.copy(0, 0, 280, 50))
                    << scale << ", " << part << ", " << step.x();
            }
        }
}

/// More looks than are kept.
TEST(GlyphPictures, LooksThatWereDroppedAreDrawnAgain)
{
    Setting setting{{.family = "宋体"}};
    const QImage before = drawn(setting, By::us);
    for (QRgb red = 1; red < 200; ++red) {
        setting.colour = 0xFF000000 | red << 16;
        const QImage now = drawn(setting, By::us);
        EXPECT_LE(difference(now, drawn(setting, By::toolkit), setting.ground).most, 12) << red;
        setting.colour = 0xFF000000;
        EXPECT_EQ(drawn(setting, By::us), before) << red;
    }
}

TEST(GlyphPictures, TurnedAndFinerScreensAreLeftToTheToolkit)
{
    QImage picture(100, 100, QImage::Format_RGB32);
    picture.fill(Qt::white);
    const QImage blank = picture;
    PageText text(nullptr, 1.0 / 15);
    const TextLine line = text.lines(words, text.font({})).front();
    for (const double ratio : {1.0, 2.0}) {
        picture.setDevicePixelRatio(ratio);
        QPainter painter(&picture);
        painter.rotate(ratio == 1 ? 30 : 0);
        EXPECT_FALSE(GlyphPictures::shared().draw(painter, {20, 20}, line.runs.front(), Qt::black));
        EXPECT_EQ(picture, blank);
    }
}

} // namespace
} // namespace spreadsheet
