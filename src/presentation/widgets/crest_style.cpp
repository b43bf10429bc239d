#include "presentation/widgets/crest_style.h"

#include <QPainter>
#include <QPushButton>
#include <QStyleFactory>
#include <QStyleOption>

#include "presentation/widgets/button.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int controlHeight = 32;
constexpr int controlRadius = 8;
constexpr int iconGap = 8;
constexpr int scrollHandleWidth = 6;
constexpr int smallestScrollHandle = 32;

QColor blended(const QColor& base, const QColor& over, double amount) {
    return QColor::fromRgbF(
        static_cast<float>(base.redF() + (over.redF() - base.redF()) * amount),
        static_cast<float>(base.greenF() + (over.greenF() - base.greenF()) * amount),
        static_cast<float>(base.blueF() + (over.blueF() - base.blueF()) * amount));
}

void drawFrame(QPainter& painter, const QRect& rect, const QColor& fill, bool hasFocus,
               const CrestTheme& theme, const QColor& outline) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double inset = hasFocus ? 1.0 : 0.5;
    painter.setPen(QPen(hasFocus ? theme.accentText : outline, hasFocus ? 2 : 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect).adjusted(inset, inset, -inset, -inset), controlRadius,
                            controlRadius);
    painter.restore();
}

void drawButton(QPainter& painter, const QStyleOption& option, const QWidget* widget) {
    constexpr double hoverAmount = 0.05;
    constexpr double pressAmount = 0.12;
    constexpr double primaryAmount = 0.22;
    const CrestTheme& theme = CrestTheme::current();
    const bool isPressed = option.state & (QStyle::State_Sunken | QStyle::State_On);
    const bool isHovered =
        (option.state & QStyle::State_MouseOver) && (option.state & QStyle::State_Enabled);
    const double amount = isPressed ? pressAmount : isHovered ? hoverAmount : 0.0;
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    const bool isFlat = button != nullptr && button->features.testFlag(QStyleOptionButton::Flat);
    if (isFlat && amount == 0.0 && !(option.state & QStyle::State_HasFocus)) {
        return;
    }
    const bool isAccented = isPrimary(widget) && (option.state & QStyle::State_Enabled);
    const QColor ground = isAccented ? blended(theme.cardBackground, theme.accent, primaryAmount)
                                     : theme.cardBackground;
    drawFrame(painter, option.rect, blended(ground, theme.text, amount),
              option.state & QStyle::State_HasFocus, theme,
              isAccented ? theme.accent : theme.hairline);
}

/// The width of a button's icon, with the gap before its text.
int roomForIcon(const QStyleOptionButton& button) {
    const int gap = button.text.isEmpty() ? 0 : iconGap;
    return button.icon.isNull() ? 0 : button.iconSize.width() + gap;
}

void drawButtonLabel(QPainter& painter, const QStyleOptionButton& button, const QWidget* widget) {
    const CrestTheme& theme = CrestTheme::current();
    const int textWidth = button.fontMetrics.horizontalAdvance(button.text);
    const int iconWidth = roomForIcon(button);
    int left = button.rect.center().x() - (iconWidth + textWidth) / 2;
    const bool isEnabled = button.state & QStyle::State_Enabled;
    if (iconWidth > 0) {
        const QPixmap icon =
            button.icon.pixmap(button.iconSize, widget != nullptr ? widget->devicePixelRatioF() : 1,
                               isEnabled ? QIcon::Normal : QIcon::Disabled);
        painter.drawPixmap(left, button.rect.center().y() - button.iconSize.height() / 2 + 1, icon);
        left += iconWidth;
    }
    painter.setPen(isEnabled ? theme.text : theme.secondaryText);
    painter.drawText(QRect(left, button.rect.top(), textWidth + 1, button.rect.height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, button.text);
}

void drawScrollBar(QPainter& painter, const QRect& slider, bool isHovered, bool isVertical) {
    const CrestTheme& theme = CrestTheme::current();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isHovered ? theme.secondaryText : theme.hairline);
    QRectF handle(slider);
    if (isVertical) {
        handle.setLeft(handle.center().x() - scrollHandleWidth / 2.0);
        handle.setWidth(scrollHandleWidth);
        handle.adjust(0, 2, 0, -2);
    } else {
        handle.setTop(handle.center().y() - scrollHandleWidth / 2.0);
        handle.setHeight(scrollHandleWidth);
        handle.adjust(2, 0, -2, 0);
    }
    painter.drawRoundedRect(handle, scrollHandleWidth / 2.0, scrollHandleWidth / 2.0);
    painter.restore();
}

}  // namespace

CrestStyle::CrestStyle() : QProxyStyle(QStyleFactory::create(u"Fusion"_s)) {}

void CrestStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (widget->inherits("QTipLabel")) {
        // A tool tip gets the desktop's colours, which may not match those of the window.
        const CrestTheme& theme = CrestTheme::current();
        QPalette colors = widget->palette();
        colors.setColor(QPalette::ToolTipBase, theme.cardBackground);
        colors.setColor(QPalette::ToolTipText, theme.text);
        widget->setPalette(colors);
        widget->setFont(CrestFonts::current().body);
    }
}

void CrestStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    const CrestTheme& theme = CrestTheme::current();
    switch (element) {
        case PE_PanelButtonCommand:
            drawButton(*painter, *option, widget);
            return;
        case PE_PanelLineEdit:
            drawFrame(*painter, option->rect, theme.textFieldBackground,
                      option->state & State_HasFocus, theme, theme.hairline);
            return;
        case PE_FrameLineEdit:
            return;
        case PE_PanelTipLabel:
            painter->fillRect(option->rect, theme.cardBackground);
            painter->setPen(theme.hairline);
            painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
            return;
        case PE_FrameFocusRect:
            // A push button shows its focus with its own frame.
            if (qobject_cast<const QPushButton*>(widget) != nullptr) {
                return;
            }
            break;
        default:
            break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void CrestStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    if (element == CE_PushButtonBevel) {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        if (button != nullptr && button->features.testFlag(QStyleOptionButton::Flat)) {
            // Qt would draw it only while it is pressed, not under the pointer or with the focus.
            drawPrimitive(PE_PanelButtonCommand, option, painter, widget);
            return;
        }
    }
    if (element == CE_PushButtonLabel) {
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            drawButtonLabel(*painter, *button, widget);
            return;
        }
    }
    if (element == CE_HeaderSection || element == CE_HeaderEmptyArea) {
        const CrestTheme& theme = CrestTheme::current();
        painter->fillRect(option->rect, theme.cardBackground);
        painter->setPen(theme.hairline);
        painter->drawLine(option->rect.bottomLeft(), option->rect.bottomRight());
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void CrestStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    if (control == CC_ScrollBar) {
        if (const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option)) {
            if (slider->minimum < slider->maximum) {
                drawScrollBar(*painter,
                              subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget),
                              option->state & State_MouseOver, slider->orientation == Qt::Vertical);
            }
            return;
        }
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

int CrestStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                            const QWidget* widget) const {
    switch (metric) {
        case PM_ScrollBarExtent:
            return spacing::scrollBar;
        case PM_ScrollBarSliderMin:
            return smallestScrollHandle;
        case PM_HeaderMargin:
            return spacing::unit;
        case PM_ToolTipLabelFrameWidth:
            // A tool tip adds one pixel to this.
            return spacing::unit - 1;
        case PM_ButtonShiftHorizontal:
        case PM_ButtonShiftVertical:
            return 0;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int CrestStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returnData) const {
    // No animations: only changing figures move on screen. No stock icons in dialogs, because their
    // colours have no meaning here.
    if (hint == SH_ToolTipLabel_Opacity) {
        return 255;
    }
    if (hint == SH_Widget_Animation_Duration || hint == SH_DialogButtonBox_ButtonsHaveIcons) {
        return 0;
    }
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

QRect CrestStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                 SubControl subControl, const QWidget* widget) const {
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || slider == nullptr) {
        return QProxyStyle::subControlRect(control, option, subControl, widget);
    }
    // A scroll bar without arrow buttons is all groove.
    const bool isVertical = slider->orientation == Qt::Vertical;
    const QRect bar = option->rect;
    const int length = isVertical ? bar.height() : bar.width();
    const qint64 range = qint64{slider->maximum} - slider->minimum;
    int handle = length;
    if (range > 0) {
        handle = static_cast<int>(qint64{slider->pageStep} * length / (range + slider->pageStep));
        handle = std::min(std::max(handle, smallestScrollHandle), length);
    }
    const int start =
        sliderPositionFromValue(slider->minimum, slider->maximum, slider->sliderPosition,
                                length - handle, slider->upsideDown);
    const auto part = [&](int from, int size) {
        return isVertical ? QRect(bar.left(), bar.top() + from, bar.width(), size)
                          : QRect(bar.left() + from, bar.top(), size, bar.height());
    };
    switch (subControl) {
        case SC_ScrollBarGroove:
            return bar;
        case SC_ScrollBarSlider:
            return part(start, handle);
        case SC_ScrollBarSubPage:
            return part(0, start);
        case SC_ScrollBarAddPage:
            return part(start + handle, length - start - handle);
        default:
            return {};
    }
}

QSize CrestStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const {
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_PushButton) {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        constexpr int sidePadding = 12;
        const int iconWidth = button != nullptr ? roomForIcon(*button) : 0;
        const int textWidth =
            button != nullptr ? option->fontMetrics.horizontalAdvance(button->text) : size.width();
        result = {textWidth + iconWidth + 2 * sidePadding, controlHeight};
    } else if (type == CT_LineEdit) {
        result.setHeight(controlHeight);
    }
    return result;
}

}  // namespace tallowcrest
