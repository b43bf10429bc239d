#pragma once

#include "presentation/shell/settings/settings_tab.h"

class QLineEdit;

namespace tallowcrest {

class ElidedLabel;
class SystemMonitor;

/// What reaching other machines needs. Main thread.
class RemoteTab final : public SettingsTab {
    Q_OBJECT

public:
    explicit RemoteTab(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;
    void start() override;

private:
    void takeUser();
    void showRefusal(const QString& words);

    SystemMonitor& monitor_;
    QLineEdit* user_ = nullptr;
    QWidget* refusal_ = nullptr;
    ElidedLabel* refusalWords_ = nullptr;
    ElidedLabel* keyStatus_ = nullptr;
};

}  // namespace tallowcrest
