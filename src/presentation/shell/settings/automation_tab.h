#pragma once

#include <vector>

#include "presentation/shell/settings/settings_tab.h"

namespace tallowcrest {

class AutomationToggles;
class LimitRow;
class SystemMonitor;

/// What may act by itself, and how far it may go. Main thread.
class AutomationTab final : public SettingsTab {
    Q_OBJECT

public:
    explicit AutomationTab(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;

private:
    QWidget* makeRules();
    QWidget* makeDiskAutopilot();

    SystemMonitor& monitor_;
    std::vector<AutomationToggles*> toggles_;
    std::vector<LimitRow*> limits_;
};

}  // namespace tallowcrest
