#include "presentation/widgets/level_bar.h"

#include <QImage>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(LevelBar, IsFilledToItsLevel) {
    LevelBar bar;
    bar.resize(200, 6);
    const auto colorAt = [&bar](int x) { return bar.grab().toImage().pixelColor(x, 3); };
    const CrestTheme& theme = CrestTheme::current();
    EXPECT_EQ(colorAt(4), theme.track) << "empty at first";
    bar.setLevel(50, &CrestTheme::good);
    EXPECT_EQ(colorAt(4), theme.good);
    EXPECT_EQ(colorAt(90), theme.good);
    EXPECT_EQ(colorAt(110), theme.track);
    bar.setLevel(130, &CrestTheme::caution);
    EXPECT_EQ(colorAt(195), theme.caution);
    bar.setLevel(-5, &CrestTheme::caution);
    EXPECT_EQ(colorAt(4), theme.track);
}

}  // namespace
}  // namespace tallowcrest
