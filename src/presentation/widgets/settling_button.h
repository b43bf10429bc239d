#pragma once

#include <chrono>

#include <QTimer>

class QPushButton;

namespace tallowcrest {

/// Disables a button for a moment after it appears, so that neither the second half of a double
/// click nor a press meant for what was there before triggers it. Main thread.
class SettlingButton final {
public:
    static constexpr std::chrono::milliseconds settlingTime{700};

    /// The button must outlive the object.
    explicit SettlingButton(QPushButton& button);
    ~SettlingButton() { stop(); }
    SettlingButton(const SettlingButton&) = delete;
    SettlingButton& operator=(const SettlingButton&) = delete;

    /// Disables the button until the settling time has passed since the last call.
    void settle();
    /// The same for a button that only moves: at the end it gets the focus back that it had, unless
    /// something else has it by then.
    void settleInNewPlace();
    bool isSettling() const { return timer_->isActive(); }
    /// Leaves the button as it is.
    void stop() { timer_->stop(); }

private:
    void disableForAMoment();

    QPushButton& button_;
    QTimer* timer_;  ///< a child of the button
    bool givesFocusBack_ = false;
};

}  // namespace tallowcrest
