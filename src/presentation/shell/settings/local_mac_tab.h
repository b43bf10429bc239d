#pragma once

#include "presentation/shell/settings/settings_tab.h"

namespace tallowcrest {

/// How this machine is set up. Main thread.
class LocalMacTab final : public SettingsTab {
    Q_OBJECT

public:
    /// Takes over `notifications`, the switches of the notifications.
    explicit LocalMacTab(QWidget* notifications, QWidget* parent = nullptr);

signals:
    void expandAllWanted();
    void collapseAllWanted();
};

}  // namespace tallowcrest
