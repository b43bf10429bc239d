#pragma once

#include <chrono>

#include <QTimer>

class QPushButton;

namespace tallowcrest {

/// Keeps a button that came into view from being pressed for a moment: neither the second click of
/// two nor a press that was meant for what stood there before must answer it. Main thread.
class SettlingButton final {
public:
    static constexpr std::chrono::milliseconds settlingTime{700};

    /// The button must outlive the object.
    explicit SettlingButton(QPushButton& button);

    /// The button cannot be pressed until the time has passed since the last call.
    void settle();
    /// Leaves the button as it is.
    void stop() { timer_.stop(); }

    /// For tests, which wait for nothing. Also holds for a time that is under way.
    void setTime(std::chrono::milliseconds time);

private:
    QPushButton& button_;
    std::chrono::milliseconds time_ = settlingTime;
    QTimer timer_;
};

}  // namespace tallowcrest
