#pragma once

#include <QString>
#include <QWidget>

#include "presentation/widgets/step_slider.h"

namespace tallowcrest {

class ElidedLabel;

/// A setting with a slider: its title, its value in words, and the slider below. For use on a card.
/// Main thread.
class LimitRow final : public QWidget {
    Q_OBJECT

public:
    using Words = QString (*)(double value);

    /// `identifier` is the one of the slider, and `unit` says to assistive technology what its
    /// figures count.
    LimitRow(const QString& title, const QString& unit, const QString& identifier,
             const SliderScale& scale, Words words, QWidget* parent = nullptr);

    void show(double value);

signals:
    /// The owner moved the slider to another step. The receiver answers with `show`, because it may
    /// not take the value as it is.
    void moved(double value);

private:
    Words words_;
    ElidedLabel* value_ = nullptr;
    StepSlider* slider_ = nullptr;
};

}  // namespace tallowcrest
