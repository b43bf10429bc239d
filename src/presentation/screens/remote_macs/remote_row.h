#pragma once

#include <array>
#include <string>

#include <QWidget>

#include "presentation/screens/remote_macs/remote_rows.h"

class QPushButton;

namespace tallowcrest {

/// One process or app group with its buttons: "Copy", and "Quit" or the Never Quit switch. Main
/// thread.
class RemoteRow final : public QWidget {
    Q_OBJECT

public:
    /// `identifier` begins the object names of the buttons.
    RemoteRow(RemoteRows::Action action, const QString& identifier, std::string key,
              QWidget* parent = nullptr);

    void show(const remote_health_lines::Row& row);
    /// What the row stands for.
    const std::string& key() const { return key_; }
    std::array<QWidget*, 2> controls() const;

signals:
    void copyWanted();
    void actionWanted();

private:
    QPushButton* makeAction(const QString& identifier);
    void showNeverQuit();

    RemoteRows::Action action_;
    std::string key_;
    remote_health_lines::Row shown_;
    ElidedLabel* name_ = nullptr;
    ElidedLabel* note_ = nullptr;
    ElidedLabel* cpu_ = nullptr;
    ElidedLabel* memory_ = nullptr;
    QPushButton* copy_ = nullptr;
    QPushButton* actionButton_ = nullptr;
};

}  // namespace tallowcrest
