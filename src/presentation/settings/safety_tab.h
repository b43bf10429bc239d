#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <QTimer>

#include "presentation/settings/settings_tab.h"

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
    /// How long the way back cannot be taken after a stop: the second half of a double click must
    /// not undo the first.
    static constexpr std::chrono::milliseconds settlingTime{700};

    explicit SafetyTab(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;

    /// For tests, which wait for nothing.
    void setSettlingTime(std::chrono::milliseconds time) { settlingTime_ = time; }

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
    std::chrono::milliseconds settlingTime_ = settlingTime;
    QTimer settling_;
    std::optional<std::vector<std::string>> names_;
    std::vector<QWidget*> rows_;
    std::vector<QPushButton*> removals_;
    Card* neverQuit_ = nullptr;
    ElidedLabel* noNames_ = nullptr;
    Card* stop_ = nullptr;
    ElidedLabel* stopWords_ = nullptr;
    DangerButton* engage_ = nullptr;
    QPushButton* resume_ = nullptr;
    std::optional<bool> showsEngaged_;  ///< absent before the first look
};

}  // namespace tallowcrest
