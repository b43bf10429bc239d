#pragma once

#include "presentation/screens/screen.h"

namespace tallowcrest {

class AutomationToggles;
class ElidedLabel;
class SystemMonitor;

/// The way to the settings sheet, and the switches that are thrown most often. Main thread.
class SettingsPage final : public Screen {
    Q_OBJECT

public:
    explicit SettingsPage(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;

private:
    QWidget* makeHub();
    QWidget* makeRules();

    SystemMonitor& monitor_;
    ElidedLabel* hubWords_ = nullptr;
    AutomationToggles* toggles_ = nullptr;
};

}  // namespace tallowcrest
