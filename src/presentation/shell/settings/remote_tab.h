#pragma once

#include <QString>

#include "presentation/shell/settings/settings_tab.h"

namespace tallowcrest {

class ElidedLabel;
class StoredField;

/// The settings for access to other machines. Main thread.
class RemoteTab final : public SettingsTab {
    Q_OBJECT

public:
    explicit RemoteTab(QWidget* parent = nullptr);

    /// Shows the stored user name and the status of the key. A name that is being typed or was
    /// refused stays.
    void show(const QString& username, const QString& keyStatus);

    StoredField& user() { return *user_; }

signals:
    /// The owner pressed "Copy Public Key".
    void publicKeyCopyWanted();

private:
    StoredField* user_ = nullptr;
    ElidedLabel* keyStatus_ = nullptr;
};

}  // namespace tallowcrest
