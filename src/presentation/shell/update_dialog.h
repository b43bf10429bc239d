#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <optional>

#include "integration/update_alerts.h"
#include "presentation/widgets/settling_button.h"
#include "presentation/widgets/window_dialog.h"

class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class ProUpdater;

/// Shows the alerts of the updater, one after the other. Closing it is the answer that the alert
/// has for that. Main thread.
class UpdateDialog final : public WindowDialog {
    Q_OBJECT

public:
    /// The updater must outlive the dialog.
    UpdateDialog(ProUpdater& updater, QWidget* window);

    /// Does nothing while the alert is the one shown.
    void refresh() override;

    void reject() override;

private:
    void present(const UpdateAlert& alert);
    void answer(std::size_t button);

    ProUpdater& updater_;
    std::optional<UpdateAlert> shown_;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* text_ = nullptr;
    std::array<QPushButton*, 3> buttons_{};
    /// An alert may come at any time: a press meant for something else must not answer it.
    std::deque<SettlingButton> settling_;
};

}  // namespace tallowcrest
