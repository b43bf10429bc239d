#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include <QStringList>
#include <QWidget>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// How a label looks, by roles of the theme.
struct LabelStyle {
    QFont CrestFonts::*font = &CrestFonts::body;
    ThemeColor color = &CrestTheme::text;
    /// The background that the label stands on. With one the label is opaque, and a new text
    /// repaints nothing below it; without one its parent shows through.
    std::optional<ThemeColor> ground = {};
};

/// The style of a label that stands on a card.
inline LabelStyle onCard(QFont CrestFonts::*font, const ThemeColor& color = &CrestTheme::text) {
    return {font, color, &CrestTheme::cardBackground};
}

/// The style of a label that stands on a page or a dialog.
inline LabelStyle onPage(QFont CrestFonts::*font, const ThemeColor& color = &CrestTheme::text) {
    return {font, color, &CrestTheme::pageBackground};
}

/// A label whose text never widens its surroundings: a text without room ends in an ellipsis, and
/// the tool tip then shows all of it. Font and colours follow the theme. Main thread.
class ElidedLabel : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    using FontRole = QFont CrestFonts::*;

    explicit ElidedLabel(const LabelStyle& style = {}, QWidget* parent = nullptr);
    ElidedLabel(const QString& text, const LabelStyle& style, QWidget* parent = nullptr);

    /// Plain text: markup is shown as it is. Also sets the accessible name.
    void setText(const QString& text);
    const QString& text() const { return text_; }
    void setFontRole(FontRole font);
    void setColor(const ThemeColor& color);
    /// Paints the unit of a text that is one figure in another colour.
    void setUnitColor(const ThemeColor& color);
    void setAlignment(Qt::Alignment alignment);
    void setElideMode(Qt::TextElideMode mode);
    /// Wraps into at most `maximum` lines and always reserves room for `minimum` of them. Texts
    /// that may wrap start at the top unless an alignment is set afterwards.
    void setLines(int minimum, int maximum);
    /// Reserves the width that `pattern` needs with any digits, so that a new figure does not move
    /// the neighbours. Empty for no reserve.
    void setReservedText(const QString& pattern);

    /// The lines painted at the current size.
    const QStringList& shownLines() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return maximumLines_ > 1; }
    int heightForWidth(int width) const override;

    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    QString accessibleValue() const override { return text_; }

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// The lines of the text in a width.
    struct Fit {
        int width = -1;
        QStringList lines;
    };

    const QFont& textFont() const { return CrestFonts::current().*style_.font; }
    int naturalWidth() const;
    int reservedWidth() const;
    bool fitsInOneLine(int width) const;
    const QStringList& linesIn(int width) const;
    /// Keeps the line breaks of `before`, which differs from the new text only in digits of equal
    /// width.
    void keepBreaks(const QString& before);
    void forgetMeasures();
    void changeLayout();
    void updateSizePolicy();

    QString text_;
    QString reserved_;
    LabelStyle style_;
    std::optional<ThemeColor> unitColor_;
    Qt::Alignment alignment_ = Qt::AlignLeft | Qt::AlignVCenter;
    Qt::TextElideMode elideMode_ = Qt::ElideRight;
    int minimumLines_ = 1;
    int maximumLines_ = 1;
    /// The latest ones, since a layout asks for the same few widths again and again.
    mutable std::array<Fit, 5> fits_;
    mutable std::size_t oldestFit_ = 0;
    mutable int naturalWidth_ = -1;
};

/// A label with its automation identifier that wraps into at most `lines` lines. Main thread.
ElidedLabel* makeLabel(const QString& identifier, const LabelStyle& style, int lines,
                       QWidget* parent);

}  // namespace tallowcrest
