#pragma once

#include <optional>
#include <string>
#include <vector>

#include "presentation/shell/settings/settings_tab.h"
#include "presentation/widgets/settling_button.h"
#include "sampling/protection.h"

class QPushButton;

namespace tallowcrest {

class Card;
class DangerButton;
class ElidedLabel;

/// The Never Quit list and the emergency stop of all automatic actions. Main thread.
class SafetyTab final : public SettingsTab {
    Q_OBJECT

public:
    explicit SafetyTab(QWidget* parent = nullptr);

    /// When the stop has just been engaged, "Resume Manual Mode" is disabled for the settling time.
    void show(const ProtectedAppNames& neverQuit, bool isStopEngaged);

signals:
    // The receiver of each calls `show` before it returns.

    /// The owner asked to take this name off the Never Quit list.
    void removalWanted(const std::string& name);
    /// The owner pressed the emergency stop.
    void stopWanted();
    /// The owner pressed "Resume Manual Mode".
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
    std::optional<SettlingButton> settling_;  ///< `resume_`, after a stop
    std::optional<bool> showsEngaged_;        ///< absent before the first `show`
};

}  // namespace tallowcrest
