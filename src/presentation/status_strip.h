#pragma once

#include <QWidget>

namespace tallowcrest {

class Capsule;
class ElidedLabel;
class SystemMonitor;

/// The line below the page header: how far back the session reaches, the warning threshold and the
/// last outcome. Main thread.
class StatusStrip final : public QWidget {
    Q_OBJECT

public:
    explicit StatusStrip(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh();

private:
    SystemMonitor& monitor_;
    ElidedLabel* session_ = nullptr;
    Capsule* threshold_ = nullptr;
    ElidedLabel* lastAction_ = nullptr;
};

}  // namespace tallowcrest
