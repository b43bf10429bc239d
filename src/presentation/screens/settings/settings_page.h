#pragma once

#include "presentation/screens/shared/screen.h"

class QPushButton;

namespace tallowcrest {

class AutomationToggles;
class ElidedLabel;
class SystemMonitor;
struct WindowState;

/// What leads to the settings sheet, to the setup wizard and to an installation, the switches of
/// the rules, and what other machines need for a connection. Main thread.
class SettingsPage final : public Screen {
    Q_OBJECT

public:
    explicit SettingsPage(SystemMonitor& monitor, WindowState& state, QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;

private:
    QWidget* makeHub();
    QWidget* makeRules();
    QWidget* makeConnection();

    SystemMonitor& monitor_;
    WindowState& state_;
    ElidedLabel* hubWords_ = nullptr;
    QPushButton* install_ = nullptr;
    AutomationToggles* toggles_ = nullptr;
};

}  // namespace tallowcrest
