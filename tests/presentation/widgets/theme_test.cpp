#include "presentation/widgets/theme.h"

#include <utility>

#include <QApplication>
#include <QFontMetrics>
#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

struct PaletteCase {
    const char* name;
    QPalette palette;
    Appearance appearance;
};

QPalette flatPalette(const QColor& all, const QColor& text) {
    QPalette palette(text, all, all, all, all, text, text, all, all);
    return palette;
}

std::vector<PaletteCase> paletteCases() {
    return {
        {"light", paletteFor(Appearance::light), Appearance::light},
        {"dark", paletteFor(Appearance::dark), Appearance::dark},
        {"plain grey", QPalette(QColor(0xef, 0xef, 0xef)), Appearance::light},
        {"plain dark grey", QPalette(QColor(0x31, 0x36, 0x3b)), Appearance::dark},
        {"one white for all", flatPalette(Qt::white, Qt::black), Appearance::light},
        {"one black for all", flatPalette(Qt::black, Qt::white), Appearance::dark},
        {"unreadable text", flatPalette(QColor(0x60, 0x60, 0x60), QColor(0x66, 0x66, 0x66)),
         Appearance::dark},
    };
}

constexpr std::pair<const char*, QColor CrestTheme::*> textRoles[] = {
    {"text", &CrestTheme::text},         {"secondaryText", &CrestTheme::secondaryText},
    {"accent", &CrestTheme::accentText}, {"good", &CrestTheme::good},
    {"caution", &CrestTheme::caution},   {"bad", &CrestTheme::bad},
};

TEST(ContrastRatio, HasTheKnownValues) {
    EXPECT_NEAR(contrastRatio(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(contrastRatio(Qt::white, Qt::black), 21, 0.001);
    EXPECT_NEAR(contrastRatio(Qt::red, Qt::red), 1, 0.001);
    EXPECT_NEAR(contrastRatio(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.01);
}

TEST(ReadableColor, ChangesNoMoreThanNeeded) {
    EXPECT_EQ(readableColor(QColor(0x12, 0x34, 0x56), {Qt::white}), QColor(0x12, 0x34, 0x56));
    const QColor amber = QColor::fromRgbF(1.0F, 0.69F, 0.22F);
    const QColor onWhite = readableColor(amber, {Qt::white});
    EXPECT_GE(contrastRatio(onWhite, Qt::white), 4.5);
    EXPECT_LT(contrastRatio(onWhite, Qt::white), 5);
    EXPECT_EQ(readableColor(amber, {Qt::black}), QColor::fromRgb(amber.rgb()));
    const QColor torn = readableColor(Qt::red, {Qt::white, Qt::black, Qt::gray});
    EXPECT_TRUE(torn == Qt::white || torn == Qt::black)
        << "the best color for contradicting backgrounds";
}

TEST(CrestTheme, IsReadableOnEachPalette) {
    for (const PaletteCase& sample : paletteCases()) {
        SCOPED_TRACE(sample.name);
        const CrestTheme theme = CrestTheme::of(sample.palette);
        EXPECT_EQ(theme.appearance, sample.appearance);
        for (const auto& [name, role] : textRoles) {
            EXPECT_GE(contrastRatio(theme.*role, theme.cardBackground), 4.5) << name;
            EXPECT_GE(contrastRatio(theme.*role, theme.pageBackground), 4.5) << name;
        }
        for (const QColor& series : {theme.thirdSeries, theme.fourthSeries}) {
            EXPECT_GE(contrastRatio(series, theme.cardBackground), 3);
        }
        // Card and hairline stand out.
        EXPECT_GE(contrastRatio(theme.cardBackground, theme.pageBackground), 1.06);
        EXPECT_GE(contrastRatio(theme.hairline, theme.cardBackground), 1.15);
        // Table rows differ slightly, and their texts are readable.
        for (const QColor& row : {theme.hoveredRow, theme.selectedRow}) {
            EXPECT_GE(contrastRatio(theme.text, row), 4.5);
            EXPECT_GE(contrastRatio(theme.secondaryText, row), 4.5);
        }
        const double hovered = contrastRatio(theme.hoveredRow, theme.cardBackground);
        EXPECT_GT(hovered, 1.02);
        EXPECT_LT(hovered, 1.2);
        EXPECT_NE(theme.selectedRow, theme.hoveredRow);
        EXPECT_NE(theme.selectedRow, theme.cardBackground);
    }
}

TEST(CrestTheme, TakesBackgroundsFromThePlatform) {
    const QPalette palette = paletteFor(Appearance::light);
    const CrestTheme theme = CrestTheme::of(palette);
    EXPECT_EQ(theme.pageBackground, palette.color(QPalette::Window));
    EXPECT_EQ(theme.cardBackground, palette.color(QPalette::Base));
    EXPECT_EQ(theme.textFieldBackground, palette.color(QPalette::Base));
}

TEST(CrestTheme, HasAnOpaqueAmberAccentInBothAppearances) {
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        const QColor accent = CrestTheme::of(paletteFor(appearance)).accent;
        EXPECT_FLOAT_EQ(accent.alphaF(), 1);
        EXPECT_NEAR(accent.redF(), 1.0, 0.001);
        EXPECT_NEAR(accent.greenF(), 0.69, 0.001);
        EXPECT_NEAR(accent.blueF(), 0.22, 0.001);
    }
}

TEST(CrestTheme, FollowsThePaletteOfTheApplication) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(paletteFor(Appearance::dark));
    EXPECT_EQ(CrestTheme::current().appearance, Appearance::dark);
    QApplication::setPalette(paletteFor(Appearance::light));
    EXPECT_EQ(CrestTheme::current().appearance, Appearance::light);
    QApplication::setPalette(before);
}

TEST(ThemeColor, FollowsItsRoleOrStaysFixed) {
    const CrestTheme light = CrestTheme::of(paletteFor(Appearance::light));
    const CrestTheme dark = CrestTheme::of(paletteFor(Appearance::dark));
    const ThemeColor role(&CrestTheme::good);
    EXPECT_EQ(role.in(light), light.good);
    EXPECT_EQ(role.in(dark), dark.good);
    const ThemeColor fixed(QColor(Qt::magenta));
    EXPECT_EQ(fixed.in(light), QColor(Qt::magenta));
    EXPECT_EQ(fixed.in(dark), QColor(Qt::magenta));
    EXPECT_NE(role, fixed);
    EXPECT_EQ(role, ThemeColor(&CrestTheme::good));
}

TEST(CrestFonts, HaveTheThreeSizes) {
    const CrestFonts& fonts = CrestFonts::current();
    EXPECT_EQ(fonts.title.pixelSize(), 22);
    EXPECT_EQ(fonts.title.weight(), QFont::DemiBold);
    EXPECT_EQ(fonts.body.pixelSize(), 13);
    EXPECT_EQ(fonts.heading.pixelSize(), 13);
    EXPECT_EQ(fonts.caption.pixelSize(), 11);
    EXPECT_EQ(fonts.body.family(), QApplication::font().family());
}

TEST(MixedColor, InterpolatesBetweenTwoColors) {
    const QColor from(0, 100, 200);
    const QColor to(100, 200, 0);
    EXPECT_EQ(mixedColor(from, to, 0), from);
    EXPECT_EQ(mixedColor(from, to, 0.25), QColor(25, 125, 150));
    EXPECT_EQ(mixedColor(from, to, 1), to);
}

TEST(FiguresWidth, IsTheSameForAllDigits) {
    const QFont font = CrestFonts::current().body;
    const QFontMetrics metrics(font);
    bool areEqual = true;
    for (char16_t digit = u'1'; digit <= u'9'; ++digit) {
        areEqual =
            areEqual && metrics.horizontalAdvance(QChar(digit)) == metrics.horizontalAdvance(u'0');
    }
    EXPECT_EQ(hasTabularDigits(font), areEqual);
    EXPECT_EQ(figuresWidth(font, u"111%"_s), figuresWidth(font, u"888%"_s));
    EXPECT_GE(figuresWidth(font, u"111%"_s), metrics.horizontalAdvance(u"111%"_s));
}

}  // namespace
}  // namespace tallowcrest
