#pragma once

#include <initializer_list>

#include <QColor>
#include <QFont>
#include <QPalette>

namespace tallowcrest {

/// How bright a desktop is as a whole.
enum class Appearance { light, dark };

/// The colours by role, worked out once per palette. Main thread.
///
/// Nothing keeps a copy: painting asks `current()` each time, so a change of the system's palette
/// reaches every widget with the repaint that Qt itself causes.
struct CrestTheme {
    Appearance appearance = Appearance::light;
    QColor pageBackground;
    QColor cardBackground;
    QColor textFieldBackground;
    QColor text;
    QColor secondaryText;
    /// Borders and grid-like separators; opaque, and never used for text.
    QColor hairline;
    /// The ground of a table's row below the pointer, and of the one under review.
    QColor hoveredRow;
    QColor selectedRow;
    /// The empty part of rings and bars.
    QColor track;
    /// For series, fills and the selected route. Not for text: amber on white cannot be read.
    QColor accent;
    /// The accent, darkened or lightened until it can be read as text.
    QColor accentText;
    /// A calm second line beside the accent; it stands for no state.
    QColor secondSeries;
    QColor good;
    QColor caution;
    QColor bad;

    /// The theme for `palette`. Every text role reaches a contrast of 4.5 on page and card; so do
    /// the plain and the secondary text on a table's rows.
    static CrestTheme of(const QPalette& palette);
    /// The theme for the application's palette, rebuilt only when that palette has changed.
    static const CrestTheme& current();
};

/// A colour given by its role, so that it follows the theme, or once and for all.
class ThemeColor {
public:
    ThemeColor() = default;
    ThemeColor(QColor CrestTheme::*role) : role_(role) {}  // NOLINT(google-explicit-constructor)
    ThemeColor(const QColor& fixed) : role_(nullptr), fixed_(fixed) {}  // NOLINT

    QColor in(const CrestTheme& theme) const { return role_ != nullptr ? theme.*role_ : fixed_; }

    friend bool operator==(const ThemeColor& a, const ThemeColor& b) {
        return a.role_ == b.role_ && a.fixed_ == b.fixed_;
    }
    friend bool operator!=(const ThemeColor& a, const ThemeColor& b) { return !(a == b); }

private:
    QColor CrestTheme::*role_ = &CrestTheme::text;
    QColor fixed_;
};

/// The contrast of two opaque colours after WCAG 2: from 1 (the same) to 21 (black on white).
double contrastRatio(const QColor& a, const QColor& b);

/// `color` moved towards black or white, by no more than needed, until its contrast with each of
/// `backgrounds` is at least `minimum`. Of the two directions the nearer one is taken; when neither
/// arrives, the result is the better of black and white.
QColor readableColor(const QColor& color, std::initializer_list<QColor> backgrounds,
                     double minimum = 4.5);

/// The opaque colour that lies `share` (0 to 1) of the way from `from` to `to`, in the eight bits
/// that a screen shows.
QColor mixedColor(const QColor& from, const QColor& to, double share);

/// A whole palette, for a desktop that tells its appearance but gives Qt no palette of its own.
QPalette paletteFor(Appearance appearance);

/// The three sizes of the interface, in the system's own typeface. Heights are in device
/// independent pixels.
struct CrestFonts {
    QFont title;    // 22, semibold: page titles and large figures
    QFont body;     // 13
    QFont heading;  // 13, semibold: card headings
    QFont caption;  // 11

    /// The system's typeface at the size of the body, for every control that is not painted here.
    static QFont applicationFont();

    /// The fonts for the application's font, rebuilt only when that font has changed.
    static const CrestFonts& current();
};

/// The width that `pattern` needs at most, whatever digits stand in it: each digit counts as the
/// widest one. Figures laid out in this room stay put even in a typeface without tabular digits,
/// which Qt cannot ask a font for before 6.7.
int figuresWidth(const QFont& font, const QString& pattern);

/// True when all digits of `font` are equally wide, so that a text keeps its width and its line
/// breaks while only its digits change.
bool hasTabularDigits(const QFont& font);

/// Distances, in device independent pixels, on one 8-pixel grid.
namespace spacing {
inline constexpr int unit = 8;
inline constexpr int pagePadding = 24;
inline constexpr int cardPadding = 16;
inline constexpr int gap = 16;
inline constexpr int cardRadius = 12;
inline constexpr int scrollBar = 12;
inline constexpr int iconSmall = 16;
inline constexpr int iconRegular = 20;
}  // namespace spacing

}  // namespace tallowcrest
