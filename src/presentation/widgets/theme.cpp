#include "presentation/widgets/theme.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include <QFontMetrics>
#include <QGuiApplication>

namespace tallowcrest {
namespace {

constexpr double textContrast = 4.5;
constexpr double lineContrast = 3;
constexpr int bodyPixels = 13;
// Below this contrast, two large areas side by side look like one.
constexpr double areaContrast = 1.06;

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

bool readableOnAll(const QColor& color, std::initializer_list<QColor> backgrounds, double minimum) {
    return std::all_of(backgrounds.begin(), backgrounds.end(), [&](const QColor& background) {
        return contrastRatio(color, background) >= minimum;
    });
}

QColor cardColor(const QPalette& palette, const QColor& page, bool dark) {
    const QColor control = palette.color(QPalette::Active, QPalette::Base);
    if (contrastRatio(control, page) >= areaContrast) {
        return control;
    }
    // Some palettes use one colour for both: then the card is made lighter or darker than the page.
    return dark ? mixedColor(page, Qt::white, 0.06) : mixedColor(page, Qt::black, 0.05);
}

/// What the width of a digit depends on. Not the QFont itself, which must not outlive the
/// application.
struct FontKey {
    QString family;
    int pixelSize = 0;
    int weight = 0;

    bool operator==(const FontKey&) const = default;
};

struct DigitWidths {
    QChar widest = u'0';
    bool areEqual = true;
};

DigitWidths measuredDigits(const QFont& font) {
    const QFontMetrics metrics(font);
    const int first = metrics.horizontalAdvance(u'0');
    int width = first;
    DigitWidths digits;
    for (char16_t digit = u'1'; digit <= u'9'; ++digit) {
        const int advance = metrics.horizontalAdvance(QChar(digit));
        digits.areEqual = digits.areEqual && advance == first;
        if (advance > width) {
            width = advance;
            digits.widest = QChar(digit);
        }
    }
    return digits;
}

/// Cached per font: figures are measured with every sample.
DigitWidths digitWidths(const QFont& font) {
    constexpr std::size_t mostFonts = 8;
    static std::vector<std::pair<FontKey, DigitWidths>> known;
    const FontKey key{font.family(), font.pixelSize(), font.weight()};
    for (const auto& [knownKey, digits] : known) {
        if (knownKey == key) {
            return digits;
        }
    }
    if (known.size() == mostFonts) {
        known.clear();
    }
    return known.emplace_back(key, measuredDigits(font)).second;
}

}  // namespace

QColor mixedColor(const QColor& from, const QColor& to, double share) {
    const auto channel = [share](int a, int b) {
        return static_cast<int>(std::lround(a + (b - a) * share));
    };
    return QColor(channel(from.red(), to.red()), channel(from.green(), to.green()),
                  channel(from.blue(), to.blue()));
}

double contrastRatio(const QColor& a, const QColor& b) {
    const double first = luminance(a);
    const double second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor readableColor(const QColor& color, std::initializer_list<QColor> backgrounds,
                     double minimum) {
    constexpr int steps = 50;
    for (int step = 0; step <= steps; ++step) {
        const double share = static_cast<double>(step) / steps;
        for (const QColor& end : {QColor(Qt::black), QColor(Qt::white)}) {
            const QColor candidate = mixedColor(color, end, share);
            if (readableOnAll(candidate, backgrounds, minimum)) {
                return candidate;
            }
        }
    }
    const auto worst = [&](const QColor& candidate) {
        double lowest = 21;
        for (const QColor& background : backgrounds) {
            lowest = std::min(lowest, contrastRatio(candidate, background));
        }
        return lowest;
    };
    return worst(Qt::black) >= worst(Qt::white) ? Qt::black : Qt::white;
}

CrestTheme CrestTheme::of(const QPalette& palette) {
    CrestTheme theme;
    const QColor page = palette.color(QPalette::Active, QPalette::Window);
    const bool dark = page.lightness() < 128;
    const QColor card = cardColor(palette, page, dark);
    const auto readable = [&](const QColor& color) {
        return readableColor(color, {page, card}, textContrast);
    };

    theme.appearance = dark ? Appearance::dark : Appearance::light;
    theme.pageBackground = page;
    theme.cardBackground = card;
    theme.textFieldBackground = palette.color(QPalette::Active, QPalette::Base);
    theme.accent = QColor::fromRgbF(1.0F, 0.69F, 0.22F);
    const QColor plainText = readable(palette.color(QPalette::Active, QPalette::WindowText));
    const auto rowTint = [&](const QColor& over, double share) {
        constexpr double faintest = 0.01;
        QColor tint = mixedColor(card, over, share);
        // On a card of medium grey only a weak tint leaves text legible.
        while (share > faintest &&
               contrastRatio(readableColor(plainText, {page, card, tint}), tint) < textContrast) {
            share *= 0.75;
            tint = mixedColor(card, over, share);
        }
        return tint;
    };
    theme.hoveredRow = rowTint(plainText, dark ? 0.06 : 0.04);
    theme.selectedRow = rowTint(theme.accent, 0.16);
    const auto readableInRows = [&](const QColor& color) {
        return readableColor(color, {page, card, theme.hoveredRow, theme.selectedRow},
                             textContrast);
    };
    theme.text = readableInRows(plainText);
    theme.secondaryText = readableInRows(mixedColor(theme.text, card, 0.38));
    theme.hairline = mixedColor(card, theme.text, dark ? 0.16 : 0.13);
    theme.track = mixedColor(card, theme.text, dark ? 0.14 : 0.09);
    theme.accentText = readable(theme.accent);
    theme.secondSeries = dark ? QColor(0x6f, 0xa8, 0xdc) : QColor(0x3d, 0x78, 0xb5);
    const auto visible = [&](const QColor& color) {
        return readableColor(color, {card}, lineContrast);
    };
    theme.thirdSeries = visible(dark ? QColor(0x5c, 0xc8, 0xb8) : QColor(0x0f, 0x83, 0x7b));
    theme.fourthSeries = visible(dark ? QColor(0xc3, 0x9b, 0xe6) : QColor(0x85, 0x4d, 0xb5));
    theme.good = readable(dark ? QColor(0x32, 0xd0, 0x5c) : QColor(0x1b, 0x7a, 0x3a));
    theme.caution = readable(dark ? QColor(0xff, 0x9f, 0x2e) : QColor(0xb4, 0x53, 0x09));
    theme.bad = readable(dark ? QColor(0xff, 0x6b, 0x60) : QColor(0xc8, 0x28, 0x22));
    return theme;
}

const CrestTheme& CrestTheme::current() {
    static qint64 builtFor = -1;
    static CrestTheme theme;
    const QPalette palette = QGuiApplication::palette();
    if (palette.cacheKey() != builtFor) {
        theme = of(palette);
        builtFor = palette.cacheKey();
    }
    return theme;
}

QPalette paletteFor(Appearance appearance) {
    const bool dark = appearance == Appearance::dark;
    const QColor window = dark ? QColor(0x2a, 0x2b, 0x2e) : QColor(0xf3, 0xf3, 0xf4);
    const QColor base = dark ? QColor(0x1d, 0x1e, 0x20) : QColor(0xff, 0xff, 0xff);
    const QColor button = dark ? QColor(0x3a, 0x3b, 0x3f) : QColor(0xf7, 0xf7, 0xf8);
    const QColor text = dark ? QColor(0xee, 0xee, 0xf0) : QColor(0x1d, 0x1d, 0x20);
    QPalette palette(text, button, mixedColor(button, Qt::white, dark ? 0.2 : 0.8),
                     mixedColor(button, Qt::black, 0.4), mixedColor(button, Qt::black, 0.2), text,
                     Qt::white, base, window);
    palette.setColor(QPalette::AlternateBase, mixedColor(base, text, 0.04));
    palette.setColor(QPalette::ToolTipBase, button);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, mixedColor(text, base, 0.4));
    // Text on amber is black in both appearances.
    palette.setColor(QPalette::Highlight, QColor::fromRgbF(1.0F, 0.69F, 0.22F));
    palette.setColor(QPalette::HighlightedText, QColor(0x1d, 0x1d, 0x20));
    const QColor link = readableColor(QColor(0x3d, 0x78, 0xb5), {window, base}, textContrast);
    palette.setColor(QPalette::Link, link);
    palette.setColor(QPalette::LinkVisited, link);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, mixedColor(text, window, 0.55));
    }
    return palette;
}

QFont CrestFonts::applicationFont() {
    QFont font = QGuiApplication::font();
    font.setPixelSize(bodyPixels);
    return font;
}

const CrestFonts& CrestFonts::current() {
    static QFont builtFor;
    static CrestFonts fonts;
    static bool built = false;
    const QFont system = QGuiApplication::font();
    if (!built || builtFor != system) {
        const auto sized = [&system](int pixels, QFont::Weight weight) {
            QFont font = system;
            font.setPixelSize(pixels);
            font.setWeight(weight);
            return font;
        };
        constexpr int titlePixels = 22;
        constexpr int captionPixels = 11;
        fonts = {sized(titlePixels, QFont::DemiBold), sized(bodyPixels, QFont::Normal),
                 sized(bodyPixels, QFont::DemiBold), sized(captionPixels, QFont::Normal)};
        builtFor = system;
        built = true;
    }
    return fonts;
}

int figuresWidth(const QFont& font, const QString& pattern) {
    const QChar widest = digitWidths(font).widest;
    QString text = pattern;
    for (QChar& character : text) {
        if (character.isDigit()) {
            character = widest;
        }
    }
    return QFontMetrics(font).horizontalAdvance(text);
}

bool hasTabularDigits(const QFont& font) {
    return digitWidths(font).areEqual;
}

}  // namespace tallowcrest
