#pragma once

#include "presentation/shell/settings/settings_tab.h"

class QPushButton;

namespace tallowcrest {

/// The settings of this machine. Main thread.
class LocalMacTab final : public SettingsTab {
    Q_OBJECT

public:
    /// What cannot be begun now, because it is under way.
    struct Busy {
        bool isInstalling = false;
        bool isChangingLogin = false;
        bool isChecking = false;
    };

    /// Takes ownership of `notifications`, the switches of the notifications, and `download`, the
    /// progress of an update.
    LocalMacTab(QWidget* notifications, QWidget* download, QWidget* parent = nullptr);

    void show(const Busy& busy);

signals:
    // What the owner asked for.
    void installWanted();
    void launchAtLoginWanted(bool enabled);
    void updateCheckWanted();
    void setupWizardWanted();
    void expandAllWanted();
    void collapseAllWanted();

private:
    QWidget* makeInstallation(QWidget* parent);
    QWidget* makeLayoutButtons(QWidget* parent);

    QPushButton* install_ = nullptr;
    QPushButton* enableLogin_ = nullptr;
    QPushButton* disableLogin_ = nullptr;
    QPushButton* check_ = nullptr;
};

}  // namespace tallowcrest
