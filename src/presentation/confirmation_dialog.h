#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <QDialog>
#include <QTimer>

#include "core/local_records.h"
#include "core/uuid.h"

class QPushButton;

namespace tallowcrest {

class Card;
class ConfirmationDesk;
class DangerButton;
class ElidedLabel;

/// Asks for the owner's yes to the pending request. It hangs on the whole window, so it stays
/// whatever route shows below. However it goes away, other than by its confirming button or because
/// its request is pending no more, that cancels the request. Main thread.
class ConfirmationDialog final : public QDialog {
    Q_OBJECT

public:
    /// How long a question cannot be confirmed after it came into view: neither the second click of
    /// two nor a press that was meant for what stood there before must answer it.
    static constexpr std::chrono::milliseconds settlingTime{700};

    /// The desk must outlive the dialog.
    ConfirmationDialog(ConfirmationDesk& desk, QWidget* parent);

    /// Opens, changes or closes the dialog as the pending request asks for. While that is the one
    /// shown, it does nothing at all.
    void refresh();

    /// For tests, which wait for nothing.
    void setSettlingTime(std::chrono::milliseconds time);

    void reject() override;

protected:
    bool event(QEvent* event) override;

private:
    void present(const ConfirmationRequest& request);
    /// Keeps the confirming button from being pressed for a moment.
    void settle();
    void showPaths(const std::vector<std::string>& paths);
    void fit();
    void confirm();
    /// Whether what is pending is what the owner sees.
    bool showsPending() const;
    void leave(int result);
    QWidget* makePaths();

    ConfirmationDesk& desk_;
    std::chrono::milliseconds settlingTime_ = settlingTime;
    std::optional<UUID> shown_;
    QTimer settling_;
    ElidedLabel* heading_ = nullptr;
    ElidedLabel* message_ = nullptr;
    Card* pathsCard_ = nullptr;
    std::vector<ElidedLabel*> pathLines_;
    ElidedLabel* morePaths_ = nullptr;
    QPushButton* cancel_ = nullptr;
    DangerButton* confirm_ = nullptr;
};

}  // namespace tallowcrest
