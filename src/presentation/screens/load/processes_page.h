#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/date.h"
#include "presentation/screens/screen.h"

class QLineEdit;

namespace tallowcrest {

class ElidedLabel;
class ProcessTableModel;
class ProcessTableView;
class SystemMonitor;

/// The full process list, from which a process can be taken under review. Nothing quits from here.
/// Main thread.
class ProcessesPage final : public Screen {
    Q_OBJECT

public:
    explicit ProcessesPage(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;
    void showSelection() override;
    void focusSearch() override;

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* makeToolRow();
    void showStatus();
    void describeTable(const QString& emptyDetail);
    void review(const QModelIndex& index);
    /// Finds out whether the row under review is to be brought into view.
    void followSelection();
    /// Once, so that from then on the list scrolls as the owner wants it.
    void scrollToSelection();

    SystemMonitor& monitor_;
    ProcessTableModel* model_ = nullptr;
    ProcessTableView* table_ = nullptr;
    ElidedLabel* status_ = nullptr;
    QLineEdit* filter_ = nullptr;
    std::string shownFilter_;
    Date shownSample_;
    std::optional<std::int64_t> shownSelection_;
    bool isOpening_ = true;  ///< the next refresh is the first one since the page came into view
    bool isSelectionDue_ = false;  ///< to be shown, whatever the filter
};

}  // namespace tallowcrest
