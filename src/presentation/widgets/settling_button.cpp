#include "presentation/widgets/settling_button.h"

#include <QPushButton>

using namespace Qt::StringLiterals;

namespace tallowcrest {

SettlingButton::SettlingButton(QPushButton& button) : button_(button), timer_(new QTimer(&button)) {
    timer_->setObjectName(u"settling"_s);
    timer_->setSingleShot(true);
    timer_->setInterval(settlingTime);
    QObject::connect(timer_, &QTimer::timeout, &button, [&button] { button.setEnabled(true); });
}

void SettlingButton::settle() {
    button_.setEnabled(false);
    timer_->start();
}

}  // namespace tallowcrest
