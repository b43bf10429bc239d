#pragma once

#include "presentation/shell/settings/settings_tab.h"

class QPushButton;

namespace tallowcrest {

class ElidedLabel;

/// The settings of this machine. Main thread.
class LocalMacTab final : public SettingsTab {
    Q_OBJECT

public:
    struct Facts {
        // What is under way cannot be begun.
        bool isInstalling = false;
        bool isChangingLogin = false;
        bool startsAtLogin = false;
        bool isChecking = false;
    };

    /// Takes ownership of `notifications`, the switches of the notifications, and `download`, the
    /// progress of an update.
    LocalMacTab(QWidget* notifications, QWidget* download, QWidget* parent = nullptr);

    void show(const Facts& facts);

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

    ElidedLabel* login_ = nullptr;  ///< whether the program starts at login
    QPushButton* install_ = nullptr;
    QPushButton* enableLogin_ = nullptr;
    QPushButton* disableLogin_ = nullptr;
    QPushButton* check_ = nullptr;
};

}  // namespace tallowcrest
