#pragma once

#include <QProxyStyle>

namespace tallowcrest {

/// The look of the standard controls: flat, with hairlines and rounded corners, from the current
/// theme. A button with `QPushButton::flat` is quiet: it has a hairline only under the pointer,
/// while it is pressed and with the focus. Main thread.
class CrestStyle final : public QProxyStyle {
    Q_OBJECT

public:
    CrestStyle();

    using QProxyStyle::polish;
    void polish(QWidget* widget) override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                         SubControl subControl, const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
};

/// Whether a widget that gets the focus for `reason` shows a focus ring. The ring is for keyboard
/// users and does not appear on a click. When a window or menu returns the focus, the ring stays as
/// it was `before`. Any thread.
constexpr bool showsFocusRing(Qt::FocusReason reason, bool before) {
    switch (reason) {
        case Qt::MouseFocusReason:
            return false;
        case Qt::ActiveWindowFocusReason:
        case Qt::PopupFocusReason:
            return before;
        default:
            return true;
    }
}

}  // namespace tallowcrest
