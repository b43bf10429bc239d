#pragma once

#include <optional>

#include <QStringList>
#include <QWidget>

#include "presentation/widgets/accessible_figure.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// Text that never widens its surroundings: what does not fit ends in an ellipsis, and the whole
/// text is then shown as a tool tip. Its colour and font follow the theme. Main thread.
class ElidedLabel : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    using FontRole = QFont CrestFonts::*;

    explicit ElidedLabel(QWidget* parent = nullptr);
    ElidedLabel(const QString& text, FontRole font, const ThemeColor& color,
                QWidget* parent = nullptr);

    /// Plain text, whatever it holds. Also becomes the accessible name.
    void setText(const QString& text);
    const QString& text() const { return text_; }
    void setFontRole(FontRole font);
    void setColor(const ThemeColor& color);
    /// Paints the unit of a text that is one figure in another colour.
    void setUnitColor(const ThemeColor& color);
    /// The colour that lies below the label, which the label then paints itself: a new text
    /// repaints nothing of what lies below. Without one, what lies below shows through.
    void setGround(const ThemeColor& ground);
    void setAlignment(Qt::Alignment alignment);
    void setElideMode(Qt::TextElideMode mode);
    /// Wraps at `maximum` lines and keeps room for `minimum` of them even when they are not needed.
    /// More than one line begin at the top unless an alignment is set afterwards.
    void setLines(int minimum, int maximum);
    /// Keeps as much width as `pattern` needs with any digits, for figures that must not move
    /// their neighbours. Empty for no reserve.
    void setReservedText(const QString& pattern);

    /// What is painted at the present size.
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
    const QFont& textFont() const { return CrestFonts::current().*font_; }
    int naturalWidth() const;
    int reservedWidth() const;
    bool fitsInOneLine() const;
    /// Lays the new text out as `before`, from which it differs in digits of one width alone.
    void keepBreaks(const QString& before);
    void forgetMeasures();
    void changeLayout();
    void updateSizePolicy();

    QString text_;
    QString reserved_;
    FontRole font_ = &CrestFonts::body;
    ThemeColor color_ = &CrestTheme::text;
    std::optional<ThemeColor> unitColor_;
    std::optional<ThemeColor> ground_;
    Qt::Alignment alignment_ = Qt::AlignLeft | Qt::AlignVCenter;
    Qt::TextElideMode elideMode_ = Qt::ElideRight;
    int minimumLines_ = 1;
    int maximumLines_ = 1;
    mutable QStringList lines_;
    mutable int linesWidth_ = -1;
    mutable int naturalWidth_ = -1;
};

}  // namespace tallowcrest
