#pragma once

#include <memory>
#include <vector>

#include <QString>
#include <QWidget>

#include "presentation/screens/remote_macs/remote_health_lines.h"

class QAction;
class QPushButton;

namespace tallowcrest {

class MenuButton;
class SettlingButton;

/// What can be done for one machine: the two buttons that help most in its state, and a menu with
/// the others. Main thread.
class RemoteToolRow final : public QWidget {
    Q_OBJECT

public:
    /// The object names of a button and of its entry in the menu are `identifier` and that of the
    /// tool.
    explicit RemoteToolRow(const QString& identifier, QWidget* parent = nullptr);
    ~RemoteToolRow() override;

    /// A button that takes the place of another one can be pressed after a moment only, so that a
    /// click that was meant for the other one does nothing. An open menu keeps its entries until it
    /// is closed.
    void show(const RemoteHealth& machine);

    /// The controls, in the order of the tab key.
    std::vector<QWidget*> controls() const;

signals:
    void wanted(RemoteOperation operation);

private:
    struct Tool {
        const remote_health_lines::Tool* words;
        QPushButton* button;
        QAction* entry;  ///< of the menu, while the button is hidden
        std::unique_ptr<SettlingButton> settling;
        bool isForemost = false;
        bool isEnabled = true;
    };
    void showTool(Tool& tool, const RemoteHealth& machine, bool isForemost);
    /// Brings the menu up to date, unless it is open.
    void showEntries();

    std::vector<Tool> tools_;
    std::vector<RemoteOperation> foremost_;  ///< empty before the first `show`
    MenuButton* more_ = nullptr;
};

}  // namespace tallowcrest
