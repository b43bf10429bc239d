#include "presentation/widgets/settling_button.h"

#include <utility>

#include <QPushButton>

#include "presentation/widgets/button.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

SettlingButton::SettlingButton(QPushButton& button) : button_(button), timer_(new QTimer(&button)) {
    timer_->setObjectName(u"settling"_s);
    timer_->setSingleShot(true);
    timer_->setInterval(settlingTime);
    QObject::connect(timer_, &QTimer::timeout, &button, [this] {
        button_.setEnabled(true);
        if (std::exchange(givesFocusBack_, false) && button_.window()->focusWidget() == nullptr) {
            button_.setFocus();
        }
    });
}

void SettlingButton::settle() {
    givesFocusBack_ = false;
    disableForAMoment();
}

void SettlingButton::disableForAMoment() {
    setButtonEnabled(button_, false);
    timer_->start();
}

void SettlingButton::settleInNewPlace() {
    givesFocusBack_ = givesFocusBack_ || button_.window()->focusWidget() == &button_;
    disableForAMoment();
}

}  // namespace tallowcrest
