#include "tests/platform/WindowTest.h"
#include "windows/icons/own_icon.h"

#include <QImage>

namespace selfreport {
namespace {

using OwnIcons = test::WindowTest;

/// 0 to 255, of what is drawn opaque.
int lightnessOf(const QIcon& icon)
{
    const QImage image = icon.pixmap(48, 48).toImage();
    int sum = 0, pixels = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (const QColor colour = image.pixelColor(x, y); colour.alpha() == 255) {
                sum += colour.lightness();
                ++pixels;
            }
    return pixels == 0 ? -1 : sum / pixels;
}

TEST_F(OwnIcons, BareStrokesAreSeenOnEveryPalette)
{
    for (const char* name : {"bold", "italic", "left", "middle", "right"}) {
        QApplication::setPalette(QPalette(QColor(0xEF, 0xF0, 0xF1)));
        const int onLight = lightnessOf(ownIcon(name));
        EXPECT_TRUE(onLight > 0 && onLight < 96) << name << onLight;
        QApplication::setPalette(QPalette(QColor(0x2A, 0x2E, 0x32)));
        EXPECT_GT(lightnessOf(ownIcon(name)), 160) << name;
    }
    QApplication::setPalette(QPalette());
}

} // namespace
} // namespace selfreport
