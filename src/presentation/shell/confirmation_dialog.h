#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/local_records.h"
#include "core/uuid.h"
#include "presentation/state/confirmation_details.h"
#include "presentation/widgets/settling_button.h"
#include "presentation/widgets/window_dialog.h"

class QPushButton;

namespace tallowcrest {

class Card;
class ConfirmationDesk;
class DangerButton;
class ElidedLabel;
class PageScrollArea;
class SelectableText;
struct ConfirmationTargets;

/// Asks the owner to confirm the pending request, whatever route the window shows. Closing it in
/// any way other than by its confirming button cancels the request, unless that is no longer
/// pending. Main thread.
class ConfirmationDialog final : public WindowDialog {
    Q_OBJECT

public:
    using Details = std::function<ConfirmationDetails(const ConfirmationRequest&)>;

    /// The desk must outlive the dialog.
    ConfirmationDialog(ConfirmationDesk& desk, Details details, QWidget* parent);

    /// Opens, updates or closes the dialog according to the pending request. While that is the one
    /// shown, only open details that follow the state change.
    void refresh() override;

    void reject() override;
    void done(int result) override;

protected:
    bool event(QEvent* event) override;

private:
    void present(const ConfirmationRequest& request);
    /// From top to bottom, without the buttons.
    QStringList shownTexts() const;
    void showTargets(const ConfirmationTargets& targets);
    void showDetails(bool areShown);
    void followState();
    void fit();
    void confirm();
    /// Whether the pending request is the one shown.
    bool showsPending() const;
    QWidget* makeTargets();
    QWidget* makeDetails();

    ConfirmationDesk& desk_;
    Details detailsOf_;
    std::optional<UUID> shown_;
    ElidedLabel* heading_ = nullptr;
    ElidedLabel* message_ = nullptr;
    Card* targetsCard_ = nullptr;
    ElidedLabel* processes_ = nullptr;
    ElidedLabel* executables_ = nullptr;  ///< the heading of the paths
    std::vector<ElidedLabel*> pathLines_;
    ElidedLabel* morePaths_ = nullptr;
    QPushButton* detailsToggle_ = nullptr;
    QString detailsName_;
    bool detailsFollowState_ = false;
    ElidedLabel* detailsNote_ = nullptr;
    PageScrollArea* detailsArea_ = nullptr;
    SelectableText* details_ = nullptr;
    QPushButton* cancel_ = nullptr;
    DangerButton* confirm_ = nullptr;
    std::optional<SettlingButton> settling_;  ///< the confirming button
};

}  // namespace tallowcrest
