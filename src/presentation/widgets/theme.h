#pragma once

#include <initializer_list>

#include <QColor>
#include <QFont>
#include <QPalette>

namespace tallowcrest {

/// Whether the desktop is light or dark.
enum class Appearance { light, dark };

/// The colours by role, computed once per palette. Main thread.
///
/// Widgets keep no copy: they call `current()` whenever they paint, so a change of the system's
/// palette takes effect with the repaint that Qt triggers.
struct CrestTheme {
    Appearance appearance = Appearance::light;
    QColor pageBackground;
    QColor cardBackground;
    QColor textFieldBackground;
    QColor text;
    QColor secondaryText;
    /// Borders and separators; opaque, never used for text.
    QColor hairline;
    /// The background of the table row under the pointer, and of the one under review.
    QColor hoveredRow;
    QColor selectedRow;
    /// The empty part of rings and bars.
    QColor track;
    /// For series, fills and the selected route. Not for text: amber on white is illegible.
    QColor accent;
    /// The accent, darkened or lightened until it is legible as text.
    QColor accentText;
    /// The series beside the accent; they carry no meaning.
    QColor secondSeries;
    QColor thirdSeries;
    QColor fourthSeries;
    QColor good;
    QColor caution;
    QColor bad;

    /// The theme for `palette`. Every text role has a contrast of at least 4.5 on page and card,
    /// and so have the plain and the secondary text on table rows.
    static CrestTheme of(const QPalette& palette);
    /// The theme for the application's palette, cached until the palette changes.
    static const CrestTheme& current();
};

/// A colour of the theme, given by its role, or a fixed one.
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

/// `color` moved towards black or white, no further than needed, until its contrast with each of
/// `backgrounds` is at least `minimum`. The direction that needs the smaller change wins; if
/// neither reaches the minimum, the result is the better of black and white.
QColor readableColor(const QColor& color, std::initializer_list<QColor> backgrounds,
                     double minimum = 4.5);

/// The opaque colour at `share` (0 to 1) of the way from `from` to `to`, with eight bits a channel.
QColor mixedColor(const QColor& from, const QColor& to, double share);

/// A full palette, for a desktop that states its appearance but gives Qt no palette of its own.
QPalette paletteFor(Appearance appearance);

/// The fonts of the interface, in the system's typeface. Sizes in device independent pixels.
struct CrestFonts {
    QFont title;    // 22, semibold: page titles and large figures
    QFont body;     // 13
    QFont heading;  // 13, semibold: card headings
    QFont caption;  // 11

    /// The system's typeface at the body size, for the controls that Qt paints.
    static QFont applicationFont();

    /// The fonts for the application's font, cached until that font changes.
    static const CrestFonts& current();
};

/// The largest width of `pattern` with any digits in it: each digit counts as the widest one.
/// Figures laid out in this width do not move even in a typeface without tabular digits, which Qt
/// cannot request before 6.7.
int figuresWidth(const QFont& font, const QString& pattern);

/// Whether all digits of `font` are equally wide, so that a text keeps its width and line breaks
/// while only its digits change.
bool hasTabularDigits(const QFont& font);

/// Distances, in device independent pixels, on one 8-pixel grid.
namespace spacing {
inline constexpr int unit = 8;
inline constexpr int pagePadding = 24;
inline constexpr int cardPadding = 16;
inline constexpr int gap = 16;
inline constexpr int cardRadius = 12;
inline constexpr int scrollBar = 12;
/// What is wider leaves the rest of the window empty.
inline constexpr int widestContent = 1400;
inline constexpr int iconSmall = 16;
inline constexpr int iconRegular = 20;
}  // namespace spacing

}  // namespace tallowcrest
