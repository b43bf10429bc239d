#pragma once

#include <QWidget>

class QBoxLayout;

namespace tallowcrest {

class Capsule;
class ElidedLabel;
class SystemMonitor;

/// The line below the page header: the length of the session, the enabled automations or the
/// emergency stop, the warning threshold, and the outcome of the last action. Main thread.
class StatusStrip final : public QWidget {
    Q_OBJECT

public:
    explicit StatusStrip(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showAutomation();

    SystemMonitor& monitor_;
    QBoxLayout* facts_ = nullptr;
    ElidedLabel* session_ = nullptr;
    Capsule* automation_ = nullptr;
    Capsule* threshold_ = nullptr;
    ElidedLabel* lastAction_ = nullptr;
};

}  // namespace tallowcrest
