#include "presentation/elided_label.h"

#include <algorithm>

#include <QEvent>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "presentation/text_lines.h"

namespace tallowcrest {
namespace {

// A label asks for no more than this, however long its text is; a layout may still give it more.
constexpr int widestHint = 480;
constexpr int longestToolTip = 2000;

bool differOnlyInDigits(const QString& a, const QString& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](QChar left, QChar right) {
        return left == right || (left.isDigit() && right.isDigit());
    });
}

}  // namespace

ElidedLabel::ElidedLabel(QWidget* parent) : QWidget(parent) {
    installAccessibleFigures();
    updateSizePolicy();
}

ElidedLabel::ElidedLabel(const QString& text, FontRole font, const ThemeColor& color,
                         QWidget* parent)
    : ElidedLabel(parent) {
    font_ = font;
    color_ = color;
    setText(text);
}

void ElidedLabel::setText(const QString& text) {
    if (text == text_) {
        return;
    }
    // A new layout of the whole page is dear, and so is measuring text. Most new texts differ from
    // the old in their digits alone, which ask for the same room.
    const bool isSameButForDigits = differOnlyInDigits(text, text_);
    const int widthBefore = naturalWidth();
    const int heightBefore = heightForWidth(width());
    text_ = text;
    lines_.clear();
    linesWidth_ = -1;
    setAccessibleName(text);
    if (!isSameButForDigits) {
        naturalWidth_ = -1;
    }
    if (naturalWidth() != widthBefore || heightForWidth(width()) != heightBefore) {
        updateGeometry();
    }
    update();
}

void ElidedLabel::setFontRole(FontRole font) {
    font_ = font;
    changeLayout();
}

void ElidedLabel::setColor(const ThemeColor& color) {
    if (color != color_) {
        color_ = color;
        update();
    }
}

void ElidedLabel::setAlignment(Qt::Alignment alignment) {
    alignment_ = alignment;
    update();
}

void ElidedLabel::setElideMode(Qt::TextElideMode mode) {
    elideMode_ = mode;
    changeLayout();
}

void ElidedLabel::setLines(int minimum, int maximum) {
    maximumLines_ = std::max(1, maximum);
    minimumLines_ = std::clamp(minimum, 1, maximumLines_);
    updateSizePolicy();
    changeLayout();
}

void ElidedLabel::setReservedText(const QString& pattern) {
    reserved_ = pattern;
    changeLayout();
}

QStringList ElidedLabel::shownLines() const {
    if (linesWidth_ != width()) {
        lines_ = fittedLines(text_, textFont(), width(), maximumLines_, elideMode_);
        linesWidth_ = width();
    }
    return lines_;
}

int ElidedLabel::naturalWidth() const {
    if (naturalWidth_ < 0) {
        const int reserved = reserved_.isEmpty() ? 0 : figuresWidth(textFont(), reserved_);
        // No text of this length fits into the widest hint. Digits count as the widest one, so that
        // another figure of as many digits asks for the same room.
        const int wanted = figuresWidth(textFont(), text_.left(200)) + 1;
        naturalWidth_ = std::max(reserved, std::min(wanted, widestHint));
    }
    return naturalWidth_;
}

QSize ElidedLabel::sizeHint() const {
    const int width = naturalWidth();
    return {width,
            hasHeightForWidth() ? heightForWidth(width) : QFontMetrics(textFont()).lineSpacing()};
}

QSize ElidedLabel::minimumSizeHint() const {
    const int reserved = reserved_.isEmpty() ? 0 : figuresWidth(textFont(), reserved_);
    const int shortest = std::min(naturalWidth(), 4 * spacing::unit);
    return {std::max(reserved, shortest), QFontMetrics(textFont()).lineSpacing() * minimumLines_};
}

int ElidedLabel::heightForWidth(int width) const {
    const int lineHeight = QFontMetrics(textFont()).lineSpacing();
    if (maximumLines_ == 1) {
        return lineHeight;
    }
    const auto needed =
        width == this->width()
            ? shownLines().size()
            : fittedLines(text_, textFont(), width, maximumLines_, elideMode_).size();
    return lineHeight * std::max(minimumLines_, static_cast<int>(needed));
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const QStringList lines = shownLines();
        if (!lines.isEmpty() && lines.last().contains(QChar(u'…')) && !text_.endsWith(u'…')) {
            // Escaped, as names from outside must not be read as markup.
            QToolTip::showText(
                static_cast<QHelpEvent*>(event)->globalPos(),
                QStringLiteral("<p>%1</p>").arg(text_.left(longestToolTip).toHtmlEscaped()), this);
        } else {
            QToolTip::hideText();
        }
        return true;
    }
    return QWidget::event(event);
}

void ElidedLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::EnabledChange) {
        changeLayout();
    }
    QWidget::changeEvent(event);
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    update();
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    const QStringList lines = shownLines();
    if (lines.isEmpty()) {
        return;
    }
    QPainter painter(this);
    painter.setFont(textFont());
    QColor color = color_.in(CrestTheme::current());
    if (!isEnabled()) {
        color.setAlphaF(0.5F);
    }
    painter.setPen(color);
    const int lineHeight = painter.fontMetrics().lineSpacing();
    const int block = lineHeight * static_cast<int>(lines.size());
    int top = 0;
    if ((alignment_ & Qt::AlignVCenter) != 0 && maximumLines_ == 1) {
        top = (height() - block) / 2;
    }
    const auto horizontal = static_cast<int>(alignment_ & Qt::AlignHorizontal_Mask);
    for (const QString& line : lines) {
        painter.drawText(QRect(0, top, width(), lineHeight),
                         horizontal | Qt::AlignVCenter | Qt::TextSingleLine, line);
        top += lineHeight;
    }
}

void ElidedLabel::forgetMeasures() {
    lines_.clear();
    linesWidth_ = -1;
    naturalWidth_ = -1;
}

void ElidedLabel::changeLayout() {
    forgetMeasures();
    updateGeometry();
    update();
}

void ElidedLabel::updateSizePolicy() {
    QSizePolicy policy(QSizePolicy::Preferred,
                       maximumLines_ > 1 ? QSizePolicy::Minimum : QSizePolicy::Fixed);
    policy.setHeightForWidth(maximumLines_ > 1);
    setSizePolicy(policy);
}

}  // namespace tallowcrest
