#pragma once

#include <vector>

#include <QString>
#include <QWidget>

#include "core/remote_records.h"
#include "remote/remote_profiles.h"

class QLineEdit;

namespace tallowcrest {

class ElidedLabel;
class LimitRow;
class ToggleSwitch;

/// The fields of one machine's profile. For use on a card. Main thread.
class RemoteProfileEditor final : public QWidget {
    Q_OBJECT

public:
    /// The object names of the fields begin with `identifier`.
    explicit RemoteProfileEditor(const QString& identifier, QWidget* parent = nullptr);

    /// Leaves a field with the focus alone: what the owner types is stored without the white space
    /// at its ends, which the next word may need.
    void show(const RemoteProfile& profile, bool isLinux = false);

    /// The controls, in the order of the tab key.
    std::vector<QWidget*> controls() const;

signals:
    /// The owner changed one field; a text comes as it was typed.
    void changed(const RemoteProfileChange& change);

private:
    QLineEdit* makeField(const QString& title, const QString& identifier,
                         const QString& description);
    QWidget* makePermission(const QString& identifier);

    QLineEdit* nickname_ = nullptr;
    QLineEdit* role_ = nullptr;
    LimitRow* threshold_ = nullptr;
    ToggleSwitch* purge_ = nullptr;
    ElidedLabel* purgeName_ = nullptr;
    ElidedLabel* purgeState_ = nullptr;
};

}  // namespace tallowcrest
