#pragma once

#include <vector>

#include "presentation/shell/sheet_host.h"

class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class SystemMonitor;
struct WindowState;

/// What makes the program useful every day, on one page. It opens by itself until it was left by
/// its one exit, "Done". Main thread.
class SetupWizard final : public Sheet {
    Q_OBJECT

public:
    SetupWizard(SystemMonitor& monitor, WindowState& state, QWidget* window);

    /// What the wizard shows of `monitor` and `state`, which also say whether it is open.
    static std::vector<Observable*> shows(SystemMonitor& monitor, WindowState& state);

protected:
    void start() override;
    void showState() override;
    QWidget* firstControl() override;

private:
    QWidget* makeRows();
    QWidget* makeFoot();

    SystemMonitor& monitor_;
    WindowState& state_;
    std::vector<ElidedLabel*> texts_;
    ElidedLabel* lastAction_ = nullptr;
    QPushButton* login_ = nullptr;
    QPushButton* done_ = nullptr;
};

}  // namespace tallowcrest
