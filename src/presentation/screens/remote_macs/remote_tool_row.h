#pragma once

#include <vector>

#include <QString>
#include <QWidget>

#include "presentation/screens/remote_macs/remote_health_lines.h"

class QAction;
class QPushButton;

namespace tallowcrest {

class MenuButton;

/// What can be done for one machine: the two buttons that help most in its state, and a menu with
/// the others. Main thread.
class RemoteToolRow final : public QWidget {
    Q_OBJECT

public:
    /// The object names of a button and of its entry in the menu are `identifier` and that of the
    /// tool.
    explicit RemoteToolRow(const QString& identifier, QWidget* parent = nullptr);

    void show(const RemoteHealth& machine);

    /// The controls, in the order of the tab key.
    std::vector<QWidget*> controls() const;

signals:
    void wanted(RemoteOperation operation);

private:
    struct Tool {
        RemoteOperation operation;
        QPushButton* button;
        QAction* entry;  ///< of the menu, while the button is hidden
    };
    std::vector<Tool> tools_;
    MenuButton* more_ = nullptr;
};

}  // namespace tallowcrest
