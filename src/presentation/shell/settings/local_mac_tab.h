#pragma once

#include "presentation/shell/settings/settings_tab.h"

namespace tallowcrest {

class AutomationToggles;
class SystemMonitor;

/// How this machine is set up. Main thread.
class LocalMacTab final : public SettingsTab {
    Q_OBJECT

public:
    explicit LocalMacTab(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;

private:
    AutomationToggles* notifications_ = nullptr;
};

}  // namespace tallowcrest
