#pragma once

#include <QSlider>

namespace tallowcrest {

/// The values of a slider: from `minimum` to `maximum`, both included, in steps of `step`.
struct SliderScale {
    double minimum = 0.0;
    double maximum = 1.0;
    double step = 1.0;

    int steps() const;
    /// The step nearest to `value`; the first one for not-a-number.
    int nearestStep(double value) const;
    double valueAt(int index) const { return minimum + index * step; }
};

/// A slider over a scale. Assistive technology gets the values of the scale and the text of
/// `setValueText`. Main thread.
class StepSlider final : public QSlider {
    Q_OBJECT

public:
    explicit StepSlider(const SliderScale& scale, QWidget* parent = nullptr);

    const SliderScale& scale() const { return scale_; }

    /// Moves to the step nearest to `value`, without a signal.
    void show(double value);
    void setValueText(const QString& text) { valueText_ = text; }
    const QString& valueText() const { return valueText_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The user moved it to another step.
    void moved(double value);

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    SliderScale scale_;
    QString valueText_;
    bool hasRing_ = false;
};

}  // namespace tallowcrest
