#include "presentation/widgets/elided_label.h"

#include <algorithm>
#include <utility>

#include <QEvent>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>

#include "presentation/widgets/figure_text.h"
#include "presentation/widgets/text_lines.h"

namespace tallowcrest {
namespace {

// The widest size hint, however long the text is; a layout may still give the label more.
constexpr int widestHint = 480;
constexpr qsizetype longestMeasured = 200;

bool differOnlyInDigits(const QString& a, const QString& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](QChar left, QChar right) {
        return left == right || (left.isDigit() && right.isDigit());
    });
}

}  // namespace

ElidedLabel::ElidedLabel(const LabelStyle& style, QWidget* parent)
    : QWidget(parent), style_(style) {
    installAccessibleFigures();
    setAttribute(Qt::WA_OpaquePaintEvent, style_.ground.has_value());
    updateSizePolicy();
}

ElidedLabel::ElidedLabel(const QString& text, const LabelStyle& style, QWidget* parent)
    : ElidedLabel(style, parent) {
    setText(text);
}

void ElidedLabel::setText(const QString& text) {
    if (text == text_) {
        return;
    }
    // Laying out the whole page is expensive, and so is measuring text. Most new texts differ from
    // the old one only in digits, which need the same room.
    const bool isSameButForDigits = differOnlyInDigits(text, text_);
    if (isSameButForDigits && hasTabularDigits(textFont())) {
        keepBreaks(std::exchange(text_, text));
    } else {
        const int widthBefore = naturalWidth();
        const int heightBefore = heightForWidth(width());
        text_ = text;
        fits_ = {};
        if (!isSameButForDigits) {
            naturalWidth_ = -1;
        }
        if (naturalWidth() != widthBefore || heightForWidth(width()) != heightBefore) {
            updateGeometry();
        }
    }
    setAccessibleName(spokenText(text));
    update();
}

void ElidedLabel::setFontRole(FontRole font) {
    style_.font = font;
    changeLayout();
}

void ElidedLabel::setColor(const ThemeColor& color) {
    if (color != style_.color) {
        style_.color = color;
        update();
    }
}

void ElidedLabel::setUnitColor(const ThemeColor& color) {
    unitColor_ = color;
    update();
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
    if (maximumLines_ > 1) {
        // Aligned to the top, so that a second line does not move the first.
        alignment_ = (alignment_ & Qt::AlignHorizontal_Mask) | Qt::AlignTop;
    }
    updateSizePolicy();
    changeLayout();
}

void ElidedLabel::setReservedText(const QString& pattern) {
    reserved_ = pattern;
    changeLayout();
}

const QStringList& ElidedLabel::shownLines() const {
    return linesIn(width());
}

const QStringList& ElidedLabel::linesIn(int width) const {
    const auto known = std::ranges::find(fits_, width, &Fit::width);
    if (known != fits_.end()) {
        return known->lines;
    }
    Fit& fit = fits_.at(oldestFit_);
    oldestFit_ = (oldestFit_ + 1) % fits_.size();
    fit = {width, fitsInOneLine(width)
                      ? QStringList{text_}
                      : fittedLines(text_, textFont(), width, maximumLines_, elideMode_)};
    return fit.lines;
}

bool ElidedLabel::fitsInOneLine(int width) const {
    // The natural width stays cached while only digits change, so this avoids the measuring that
    // wrapping and eliding start with.
    return !text_.isEmpty() && text_.size() <= longestMeasured && !text_.contains(u'\n') &&
           !text_.contains(QChar::LineSeparator) && naturalWidth() < widestHint &&
           naturalWidth() <= width;
}

void ElidedLabel::keepBreaks(const QString& before) {
    for (Fit& fit : fits_) {
        qsizetype from = 0;
        for (QString& line : fit.lines) {
            const qsizetype start = before.indexOf(line, from);
            if (start < 0) {
                // Not a part of the text: the line was elided.
                fit = {};
                break;
            }
            from = start + line.size();
            line = text_.mid(start, line.size());
        }
    }
}

int ElidedLabel::naturalWidth() const {
    if (naturalWidth_ < 0) {
        // No text of the full length fits into the widest hint, and of half that length few do.
        // Every digit counts as the widest one, so that any figure of as many digits needs the same
        // room.
        constexpr qsizetype half = longestMeasured / 2;
        const auto widthOf = [&](qsizetype length) {
            return figuresWidth(textFont(), text_.left(length)) + 1;
        };
        const bool isWidest = text_.size() > half && widthOf(half) >= widestHint;
        const int wanted = isWidest ? widestHint : widthOf(longestMeasured);
        naturalWidth_ = std::max(reservedWidth(), std::min(wanted, widestHint));
    }
    return naturalWidth_;
}

int ElidedLabel::reservedWidth() const {
    // One more for rounding, as for the text itself, so that the text never outgrows its reserve.
    return reserved_.isEmpty() ? 0 : figuresWidth(textFont(), reserved_) + 1;
}

QSize ElidedLabel::sizeHint() const {
    const int width = naturalWidth();
    return {width,
            hasHeightForWidth() ? heightForWidth(width) : QFontMetrics(textFont()).lineSpacing()};
}

QSize ElidedLabel::minimumSizeHint() const {
    const int shortest = std::min(naturalWidth(), 4 * spacing::unit);
    return {std::max(reservedWidth(), shortest),
            QFontMetrics(textFont()).lineSpacing() * minimumLines_};
}

int ElidedLabel::heightForWidth(int width) const {
    const int lineHeight = QFontMetrics(textFont()).lineSpacing();
    if (maximumLines_ == 1) {
        return lineHeight;
    }
    return lineHeight * std::max(minimumLines_, static_cast<int>(linesIn(width).size()));
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const QStringList lines = shownLines();
        if (!lines.isEmpty() && lines.last().contains(QChar(u'…')) && !text_.endsWith(u'…')) {
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipText(text_),
                               this);
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

void ElidedLabel::paintEvent(QPaintEvent* event) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    if (style_.ground) {
        painter.fillRect(event->rect(), style_.ground->in(theme));
    }
    const QStringList& lines = shownLines();
    if (lines.isEmpty()) {
        return;
    }
    painter.setFont(textFont());
    QColor color = style_.color.in(theme);
    if (!isEnabled()) {
        color.setAlphaF(0.5F);
    }
    painter.setPen(color);
    const QFontMetrics metrics = painter.fontMetrics();
    const int lineHeight = metrics.lineSpacing();
    const int block = lineHeight * static_cast<int>(lines.size());
    int top = 0;
    if ((alignment_ & Qt::AlignVCenter) != 0) {
        top = (height() - block) / 2;
    }
    const int baseline = textBaseline(metrics, QRect(0, 0, width(), lineHeight));
    const auto horizontal = static_cast<int>(alignment_ & Qt::AlignHorizontal_Mask);
    for (const QString& line : lines) {
        if (unitColor_ && isEnabled() && line == text_) {
            drawFigure(painter, QRect(0, top, width(), lineHeight), Qt::Alignment(horizontal), line,
                       color, unitColor_->in(theme));
        } else if (horizontal == Qt::AlignLeft && !line.isRightToLeft()) {
            // Drawing at a known position avoids the text layout of drawing into a rectangle.
            painter.drawText(0, top + baseline, line);
        } else {
            painter.drawText(QRect(0, top, width(), lineHeight),
                             horizontal | Qt::AlignVCenter | Qt::TextSingleLine, line);
        }
        top += lineHeight;
    }
}

void ElidedLabel::forgetMeasures() {
    fits_ = {};
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

ElidedLabel* makeLabel(const QString& identifier, const LabelStyle& style, int lines,
                       QWidget* parent) {
    auto* label = new ElidedLabel(style, parent);
    label->setObjectName(identifier);
    label->setLines(1, lines);
    return label;
}

}  // namespace tallowcrest
