#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/date.h"
#include "presentation/screens/shared/screen.h"

class QLineEdit;

namespace tallowcrest {

class ElidedLabel;
class ProcessTableModel;
class ProcessTableView;
class SystemMonitor;
struct WindowState;

/// The full process list, in which a process can be selected for review. Nothing can be quit here.
/// Main thread.
class LoadPage final : public Screen {
    Q_OBJECT

public:
    explicit LoadPage(SystemMonitor& monitor, WindowState& state, QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;
    void showSelection() override;
    void focusSearch() override;

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* makeToolRow();
    void review(const QModelIndex& index);
    /// Decides whether to scroll to the row under review.
    void followSelection();
    /// Runs once per selection; afterwards the list stays where the owner scrolls it.
    void scrollToSelection();

    SystemMonitor& monitor_;
    WindowState& state_;
    ProcessTableModel* model_ = nullptr;
    ProcessTableView* table_ = nullptr;
    ElidedLabel* status_ = nullptr;
    QLineEdit* filter_ = nullptr;
    std::string shownFilter_;
    Date shownSample_;
    std::optional<std::int64_t> shownSelection_;
    bool isOpening_ = true;        ///< the next refresh is the first since the page became visible
    bool isSelectionDue_ = false;  ///< show the selected row even if the filter hides it
};

}  // namespace tallowcrest
