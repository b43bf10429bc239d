#pragma once

#include <vector>

#include <QWidget>

class QBoxLayout;

namespace tallowcrest {

class Capsule;
class ElidedLabel;
class Observable;
class SystemMonitor;

/// The line below the page header: the length of the session, the enabled automations or the
/// emergency stop, the warning threshold, and the outcome of the last action. Main thread.
class StatusStrip final : public QWidget {
    Q_OBJECT

public:
    explicit StatusStrip(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh();
    /// A change of any of these calls for a refresh, and nothing else does.
    std::vector<Observable*> shows() const;

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
