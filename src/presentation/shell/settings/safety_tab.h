#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "presentation/shell/settings/settings_tab.h"
#include "presentation/widgets/settling_button.h"

class QPushButton;
class QVBoxLayout;

namespace tallowcrest {

class Card;
class DangerButton;
class ElidedLabel;
class SystemMonitor;

/// What is never quit, and the stop for all that acts by itself. Main thread.
class SafetyTab final : public SettingsTab {
    Q_OBJECT

public:
    explicit SafetyTab(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;

    /// For tests, which wait for nothing.
    void setSettlingTime(std::chrono::milliseconds time) { settling_->setTime(time); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeNeverQuit();
    QWidget* makeStop();
    void showNames();
    QWidget* makeName(const std::string& name);
    void remove(const std::string& name);
    void showStop(bool isEngaged);
    void engage();

    SystemMonitor& monitor_;
    std::optional<std::vector<std::string>> names_;
    std::vector<QWidget*> rows_;
    std::vector<QPushButton*> removals_;
    Card* neverQuit_ = nullptr;
    ElidedLabel* noNames_ = nullptr;
    Card* stop_ = nullptr;
    ElidedLabel* stopWords_ = nullptr;
    DangerButton* engage_ = nullptr;
    QPushButton* resume_ = nullptr;
    std::optional<SettlingButton> settling_;  ///< the way back, after a stop
    std::optional<bool> showsEngaged_;        ///< absent before the first look
};

}  // namespace tallowcrest
