#pragma once

#include <QString>

#include "presentation/shell/settings/settings_tab.h"

class QLineEdit;

namespace tallowcrest {

class ElidedLabel;

/// What reaching other machines needs. Main thread.
class RemoteTab final : public SettingsTab {
    Q_OBJECT

public:
    explicit RemoteTab(QWidget* parent = nullptr);

    /// Shows the stored state. A name that is being typed or was refused stays.
    void show(const QString& username, const QString& keyStatus);

    /// Puts the stored name in place of what was typed and takes a refusal away. For a name that
    /// was accepted, and for a sheet that opens.
    void setUsername(const QString& username);

    /// Says below the field why the name was refused; empty words take that away. What was typed
    /// stays, to be corrected.
    void showRefusal(const QString& words);

signals:
    /// The owner finished typing a name. Not repeated for a name that was refused.
    void usernameEntered(const QString& typed);

private:
    QWidget* makeRefusal();

    QLineEdit* user_ = nullptr;
    QWidget* refusal_ = nullptr;
    ElidedLabel* refusalWords_ = nullptr;
    ElidedLabel* keyStatus_ = nullptr;
};

}  // namespace tallowcrest
