#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/date.h"
#include "presentation/screens/shared/screen.h"
#include "presentation/words/process_order.h"

namespace tallowcrest {

class Card;
class ElidedLabel;
class OrderHeader;
class ProcessRows;
class ProcessTableModel;
class ProcessTableView;
class ProcessTools;
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
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// What the rows are made of: the same again gives the same rows.
    struct List {
        Date sample;
        std::string filter;
        std::optional<ProcessOrder> order;
        std::uint64_t details = 0;  ///< their revision, if the filter looks at them

        bool operator==(const List&) const = default;
    };

    void makeTable();
    /// Uses the space of the page: what is only good to know stands where the rows leave room.
    void fold();
    /// The room that the status needs in any order.
    int statusWidth() const;
    void placeStatus(bool isInTitle);
    void review(const QModelIndex& index);
    void setOrder(std::optional<ProcessOrder> order);
    void updateRows(Date sampledAt);
    /// Asks for the details of the rows in view, and of all while a filter searches them.
    void wantDetails();
    /// Decides whether to scroll to the row under review.
    void followSelection();
    /// Runs once per selection; afterwards the list stays where the owner scrolls it.
    void scrollToSelection();

    SystemMonitor& monitor_;
    WindowState& state_;
    Card* card_ = nullptr;
    ProcessTools* tools_ = nullptr;
    ElidedLabel* status_ = nullptr;
    OrderHeader* header_ = nullptr;
    ProcessTableModel* model_ = nullptr;
    ProcessTableView* table_ = nullptr;
    ProcessRows* rows_ = nullptr;
    std::optional<ProcessOrder> order_;  ///< absent for the order by impact
    std::optional<List> shown_;
    int shownRows_ = 0;
    std::uint64_t shownDetails_ = 0;
    std::optional<std::int64_t> shownSelection_;
    bool isOpening_ = true;        ///< the next refresh is the first since the page became visible
    bool isSelectionDue_ = false;  ///< show the selected row even if the filter hides it
};

}  // namespace tallowcrest
