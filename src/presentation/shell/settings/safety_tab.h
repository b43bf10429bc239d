#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "presentation/shell/settings/settings_tab.h"
#include "presentation/widgets/settling_button.h"
#include "sampling/protection.h"

class QPushButton;
class QVBoxLayout;

namespace tallowcrest {

class Card;
class DangerButton;
class ElidedLabel;

/// The Never Quit list and the emergency stop of everything that acts by itself. Main thread.
class SafetyTab final : public SettingsTab {
    Q_OBJECT

public:
    explicit SafetyTab(QWidget* parent = nullptr);

    void show(const ProtectedAppNames& neverQuit, bool isStopEngaged);

    /// For tests, which wait for nothing.
    void setSettlingTime(std::chrono::milliseconds time) { settling_->setTime(time); }

signals:
    // The receiver answers each with `show` before it returns.
    void removalWanted(const std::string& name);
    void stopWanted();
    void resumeWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeNeverQuit();
    QWidget* makeStop();
    void showNames(const ProtectedAppNames& names);
    QWidget* makeName(const std::string& name);
    void remove(const std::string& name);
    void showStop(bool isEngaged);
    void engage();

    std::optional<std::vector<std::string>> names_;  ///< absent before the first `show`
    std::vector<QWidget*> rows_;
    std::vector<QPushButton*> removals_;
    Card* neverQuit_ = nullptr;
    ElidedLabel* noNames_ = nullptr;
    Card* stop_ = nullptr;
    ElidedLabel* stopWords_ = nullptr;
    DangerButton* engage_ = nullptr;
    QPushButton* resume_ = nullptr;
    std::optional<SettlingButton> settling_;  ///< the way back, after a stop
    std::optional<bool> showsEngaged_;        ///< absent before the first `show`
};

}  // namespace tallowcrest
