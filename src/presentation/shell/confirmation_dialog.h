#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "core/local_records.h"
#include "core/uuid.h"
#include "presentation/widgets/settling_button.h"
#include "presentation/widgets/window_dialog.h"

class QPushButton;

namespace tallowcrest {

class Card;
class ConfirmationDesk;
class DangerButton;
class ElidedLabel;

/// Asks for the owner's yes to the pending request. It stays whatever route shows below. However it
/// goes away, other than by its confirming button or because its request is pending no more, that
/// cancels the request. Main thread.
class ConfirmationDialog final : public WindowDialog {
    Q_OBJECT

public:
    /// The desk must outlive the dialog.
    ConfirmationDialog(ConfirmationDesk& desk, QWidget* parent);

    /// Opens, changes or closes the dialog as the pending request asks for. While that is the one
    /// shown, it does nothing at all.
    void refresh() override;

    /// For tests, which wait for nothing.
    void setSettlingTime(std::chrono::milliseconds time) { settling_->setTime(time); }

    void reject() override;

protected:
    bool event(QEvent* event) override;

private:
    void present(const ConfirmationRequest& request);
    void showPaths(const std::vector<std::string>& paths);
    void fit();
    void confirm();
    /// Whether what is pending is what the owner sees.
    bool showsPending() const;
    void leave(int result);
    QWidget* makePaths();

    ConfirmationDesk& desk_;
    std::optional<UUID> shown_;
    ElidedLabel* heading_ = nullptr;
    ElidedLabel* message_ = nullptr;
    Card* pathsCard_ = nullptr;
    std::vector<ElidedLabel*> pathLines_;
    ElidedLabel* morePaths_ = nullptr;
    QPushButton* cancel_ = nullptr;
    DangerButton* confirm_ = nullptr;
    std::optional<SettlingButton> settling_;  ///< the confirming button
};

}  // namespace tallowcrest
