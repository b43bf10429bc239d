#pragma once

#include "presentation/shell/settings/settings_tab.h"

namespace tallowcrest {

/// The settings of this machine. Main thread.
class LocalMacTab final : public SettingsTab {
    Q_OBJECT

public:
    /// Takes ownership of `notifications`, the switches of the notifications.
    explicit LocalMacTab(QWidget* notifications, QWidget* parent = nullptr);

signals:
    // The owner asked to expand or collapse all sections of the dashboard.
    void expandAllWanted();
    void collapseAllWanted();
};

}  // namespace tallowcrest
