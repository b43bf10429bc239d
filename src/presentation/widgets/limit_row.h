#pragma once

#include <functional>

#include <QString>
#include <QWidget>

#include "presentation/widgets/step_slider.h"

namespace tallowcrest {

class ElidedLabel;

/// A setting with a slider: its title, its value in words, and the slider below. Shows the bound
/// value; every step of the slider writes it at once. For use on a card. Main thread.
class LimitRow final : public QWidget {
    Q_OBJECT

public:
    struct Binding {
        std::function<double()> read;
        std::function<void(double)> write;
        std::function<QString(double)> words;
    };

    /// `identifier` is the one of the slider.
    LimitRow(const QString& title, const QString& identifier, const SliderScale& scale,
             Binding binding, QWidget* parent = nullptr);

    void refresh();

private:
    void take(double value);

    Binding binding_;
    ElidedLabel* value_ = nullptr;
    StepSlider* slider_ = nullptr;
};

}  // namespace tallowcrest
