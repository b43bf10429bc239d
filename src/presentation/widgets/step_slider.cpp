#include "presentation/widgets/step_slider.h"

#include <algorithm>
#include <cmath>

#include <QAccessibleWidget>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyleOptionSlider>
#include <QWheelEvent>

#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

constexpr int sliderHeight = 24;
constexpr double grooveHeight = 4;
constexpr double knobSize = 16;
/// Half of the knob with its focus ring.
constexpr double knobRoom = knobSize / 2 + 3;
/// A click beside the knob moves it by a tenth of the scale.
constexpr int pagesPerScale = 10;

/// Qt's accessible interface of a slider would report the number of the step.
class StepSliderInterface final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit StepSliderInterface(StepSlider* slider)
        : QAccessibleWidget(slider, QAccessible::Slider) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? slider().valueText() : QAccessibleWidget::text(kind);
    }
    QVariant currentValue() const override { return slider().scale().valueAt(slider().value()); }
    void setCurrentValue(const QVariant& value) override {
        slider().setValue(slider().scale().nearestStep(value.toDouble()));
    }
    QVariant minimumValue() const override { return slider().scale().minimum; }
    QVariant maximumValue() const override { return slider().scale().maximum; }
    QVariant minimumStepSize() const override { return slider().scale().step; }

private:
    StepSlider& slider() const { return *static_cast<StepSlider*>(object()); }
};

QAccessibleInterface* sliderInterface(const QString&, QObject* object) {
    auto* slider = qobject_cast<StepSlider*>(object);
    return slider != nullptr ? new StepSliderInterface(slider) : nullptr;
}

}  // namespace

int SliderScale::steps() const {
    return static_cast<int>(std::lround((maximum - minimum) / step));
}

int SliderScale::nearestStep(double value) const {
    if (std::isnan(value)) {
        return 0;
    }
    return static_cast<int>(std::lround((std::clamp(value, minimum, maximum) - minimum) / step));
}

StepSlider::StepSlider(const SliderScale& scale, QWidget* parent)
    : QSlider(Qt::Horizontal, parent), scale_(scale) {
    QAccessible::installFactory(sliderInterface);  // which Qt keeps once
    setRange(0, scale.steps());
    setPageStep(std::max(1, scale.steps() / pagesPerScale));
    setAttribute(Qt::WA_Hover);
    connect(this, &QSlider::valueChanged, this,
            [this](int index) { emit moved(scale_.valueAt(index)); });
}

void StepSlider::show(double value) {
    const QSignalBlocker quiet(this);
    setValue(scale_.nearestStep(value));
}

QSize StepSlider::sizeHint() const {
    return {20 * spacing::unit, sliderHeight};
}

QSize StepSlider::minimumSizeHint() const {
    return {10 * spacing::unit, sliderHeight};
}

bool StepSlider::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        isPageScrollKey(static_cast<QKeyEvent*>(event)->key())) {
        event->accept();
        return true;
    }
    return QSlider::event(event);
}

void StepSlider::focusInEvent(QFocusEvent* event) {
    hasRing_ = showsFocusRing(event->reason(), hasRing_);
    QSlider::focusInEvent(event);
}

void StepSlider::wheelEvent(QWheelEvent* event) {
    // Left to the page, which otherwise could not be scrolled past a slider.
    event->ignore();
}

void StepSlider::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QStyleOptionSlider option;
    initStyleOption(&option);
    // At the place that the style uses for hit testing.
    const QPointF center =
        QRectF(style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this))
            .center();
    const QPointF knob(std::clamp(center.x(), knobRoom, width() - knobRoom), height() / 2.0);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF groove(1, knob.y() - grooveHeight / 2, width() - 2, grooveHeight);
    painter.setBrush(theme.track);
    painter.drawRoundedRect(groove, grooveHeight / 2, grooveHeight / 2);
    QRectF filled = groove;
    filled.setRight(knob.x());
    painter.setBrush(theme.accentText);
    painter.drawRoundedRect(filled, grooveHeight / 2, grooveHeight / 2);
    if (hasFocus() && hasRing_) {
        painter.setPen(QPen(theme.accentText, 2));
        painter.setBrush(theme.cardBackground);
        painter.drawEllipse(knob, knobSize / 2 + 2, knobSize / 2 + 2);
        painter.setPen(Qt::NoPen);
    }
    painter.setBrush(underMouse() ? mixedColor(theme.accentText, theme.text, 0.15)
                                  : theme.accentText);
    painter.drawEllipse(knob, knobSize / 2, knobSize / 2);
    painter.setBrush(theme.cardBackground);
    painter.drawEllipse(knob, knobSize / 2 - 4, knobSize / 2 - 4);
}

}  // namespace tallowcrest
