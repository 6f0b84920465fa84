#include "ui/ViewRules.h"
#include "ui/Symbols.h"
#include "ui/TrayIcon.h"

#include <gtest/gtest.h>

#include <QImage>

namespace orvanta::testing {
namespace {

TEST(ViewRules, PercentagesDropTheFractionAndOneIntegerIsFilledIntoATranslatedFormat)
{
    EXPECT_EQ(ui::volumePercent(0.0625f), 6);
    EXPECT_EQ(ui::volumePercent(0.505f), 50);
    EXPECT_EQ(ui::formatWithInteger("Decrease by %d ms", 5), "Decrease by 5 ms");
    EXPECT_EQ(ui::formatWithInteger("%d ms kürzer", 5), "5 ms kürzer");
    EXPECT_EQ(ui::formatWithInteger("減らす %1$d ms", 5), "減らす 5 ms");
    EXPECT_EQ(ui::formatWithInteger("%lld ms", 125), "125 ms");
    EXPECT_EQ(ui::formatWithInteger("100%% and %d", 5), "100% and 5");
    EXPECT_EQ(ui::formatWithInteger("%d and %d", 5), "5 and %d");
    EXPECT_EQ(ui::formatWithInteger("%@ stays, 50% too", 5), "%@ stays, 50% too");
    EXPECT_EQ(ui::formatWithInteger("trailing %", 5), "trailing %");
}

// The share of pixels drawn in exactly that colour, among those drawn at all.
double shareOf(const QImage& image, QRgb color)
{
    int drawn = 0;
    int matching = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qAlpha(pixel) == 255) {
                ++drawn;
                matching += (pixel & 0xFFFFFF) == (color & 0xFFFFFF) ? 1 : 0;
            }
        }
    }
    return drawn == 0 ? 0.0 : static_cast<double>(matching) / drawn;
}

TEST(Symbols, EverySymbolTheViewsNameIsCarriedAndDrawnInTheTintItIsGivenAndTheIconsAreDrawn)
{
    for (const char* name :
         {"speaker.wave.2.fill", "speaker.wave.2", "speaker.fill", "lock.shield.fill", "arrow.clockwise",
          "arrow.counterclockwise", "wave.3.right.circle.fill", "info.circle.fill", "exclamationmark.triangle.fill",
          "cup.and.saucer.fill", "minus.circle.fill", "plus.circle.fill", "macwindow", "power"}) {
        EXPECT_TRUE(ui::hasSymbol(name)) << name;
        EXPECT_FALSE(ui::symbolPixmap(name, Qt::black, 16).isNull()) << name;
    }
    EXPECT_FALSE(ui::hasSymbol("no.such.symbol"));
    EXPECT_TRUE(ui::symbolPixmap("no.such.symbol", Qt::black, 16).isNull());
    const QImage red = ui::symbolPixmap("speaker.fill", QColor(200, 0, 0), 32).toImage();
    const QImage blue = ui::symbolPixmap("speaker.fill", QColor(0, 0, 200), 32).toImage();
    EXPECT_GT(shareOf(red, qRgb(200, 0, 0)), 0.9);
    EXPECT_GT(shareOf(blue, qRgb(0, 0, 200)), 0.9);
    // A filled circle keeps its white inner mark whatever the tint.
    EXPECT_GT(shareOf(ui::symbolPixmap("plus.circle.fill", QColor(0, 0, 200), 32).toImage(), qRgb(255, 255, 255)),
              0.05);

    // The program's icon and the tray icons.
    const QImage icon = ui::appIconPixmap(64).toImage();
    ASSERT_FALSE(icon.isNull());
    EXPECT_EQ(qAlpha(icon.pixel(32, 32)), 255);
    EXPECT_EQ(qAlpha(icon.pixel(0, 0)), 0); // rounded corners
    const QImage on = ui::TrayIcon::iconFor(true).pixmap(22).toImage();
    const QImage off = ui::TrayIcon::iconFor(false).pixmap(22).toImage();
    EXPECT_NE(on, off);
    EXPECT_EQ(qAlpha(on.pixel(11, 11)), 255);
}

} // namespace
} // namespace orvanta::testing
