#include "presentation/widgets/settling_button.h"

#include <QPushButton>

namespace tallowcrest {

SettlingButton::SettlingButton(QPushButton& button) : button_(button) {
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, &button, [&button] { button.setEnabled(true); });
}

void SettlingButton::settle() {
    button_.setEnabled(false);
    timer_.start(time_);
}

void SettlingButton::setTime(std::chrono::milliseconds time) {
    time_ = time;
    if (timer_.isActive()) {
        timer_.start(time);
    }
}

}  // namespace tallowcrest
