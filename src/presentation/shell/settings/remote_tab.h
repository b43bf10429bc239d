#pragma once

#include <QString>

#include "presentation/shell/settings/settings_tab.h"

class QLineEdit;

namespace tallowcrest {

class ElidedLabel;

/// The settings for access to other machines. Main thread.
class RemoteTab final : public SettingsTab {
    Q_OBJECT

public:
    explicit RemoteTab(QWidget* parent = nullptr);
    ~RemoteTab() override;

    /// Shows the stored user name and the status of the key. A name that is being typed or was
    /// refused stays.
    void show(const QString& username, const QString& keyStatus);

    /// Replaces what was typed by the stored name and removes a refusal. Called when a name was
    /// accepted, and when the sheet opens.
    void setUsername(const QString& username);

    /// Shows below the field why the name was refused; an empty text removes that. The typed name
    /// stays, so that it can be corrected.
    void showRefusal(const QString& words);

signals:
    /// The owner finished typing a name. Not repeated for a name that was refused.
    void usernameEntered(const QString& typed);
    /// The owner pressed "Copy Public Key".
    void publicKeyCopyWanted();

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void enter();
    QWidget* makeRefusal();

    QLineEdit* user_ = nullptr;
    QString shown_;  ///< the stored name when it was put into the field
    QWidget* refusal_ = nullptr;
    ElidedLabel* refusalWords_ = nullptr;
    ElidedLabel* keyStatus_ = nullptr;
};

}  // namespace tallowcrest
