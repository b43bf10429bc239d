#include "presentation/screens/load/load_page.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHideEvent>
#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/desktop_actions.h"
#include "actions/review_target.h"
#include "core/clock.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/load/load_lines.h"
#include "presentation/screens/load/order_header.h"
#include "presentation/screens/load/process_tools.h"
#include "presentation/screens/shared/process_rows.h"
#include "presentation/screens/shared/process_table_model.h"
#include "presentation/screens/shared/process_table_view.h"
#include "presentation/screens/shared/review_process.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/process_filter.h"
#include "presentation/words/process_words.h"
#include "sampling/app_impact.h"
#include "sampling/latest_sample.h"
#include "sampling/process_details.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// On a lower page the caption, which explains the order, leaves its line to the rows.
constexpr int captionPageHeight = 680;
constexpr int statusHeight = 3 * spacing::unit;

}  // namespace

using dashboard_text::text;

LoadPage::LoadPage(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, spacing::gap);
    card_ = new Card(this);
    card_->setObjectName(u"processes"_s);
    card_->setHeader(u"gauge.with.dots.needle.67percent"_s, text(title(ActivityListMode::load)));
    card_->setAccessibleDescription(text(subtitle(ActivityListMode::load)));
    card_->setMaximumWidth(spacing::widestContent);
    // Every line less above the rows is a row more.
    card_->layout()->setContentsMargins(spacing::cardPadding, spacing::unit, spacing::cardPadding,
                                        spacing::unit);
    card_->layout()->setSpacing(0);
    card_->contentLayout()->setSpacing(0);
    tools_ = new ProcessTools(card_);
    connect(tools_, &ProcessTools::selectTopRowWanted, this, [this] {
        if (monitor_.actions().review.selectFirstProcess(model_->rows()).isAccepted()) {
            table_->setFocus();
            showSelection();
        }
    });
    connect(tools_, &ProcessTools::typingPaused, this, [this] {
        // Another page may be open by now.
        if (isVisible()) {
            announce(*this,
                     foundWords(shownRows_, std::ssize(monitor_.sample().latestProcesses())));
        }
    });
    connect(tools_, &ProcessTools::activityMonitorWanted, this,
            [this] { monitor_.actions().applications.openActivityMonitor(); });
    connect(tools_, &ProcessTools::filterTyped, this, [this](const QString& typed) {
        state_.navigation.setProcessFilter(typed.toStdString());
    });
    connect(tools_, &ProcessTools::rowsWanted, this, [this] {
        table_->setFocus(Qt::TabFocusReason);
        if (!table_->currentIndex().isValid()) {
            table_->setCurrentIndex(model_->index(0, 0));
        }
    });
    card_->headerLayout()->addWidget(tools_, 1);
    status_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), card_);
    status_->setObjectName(u"processes.sort-status"_s);
    status_->setFixedHeight(statusHeight);
    makeTable();
    layout->addWidget(card_, 1);
}

void LoadPage::makeTable() {
    model_ = new ProcessTableModel(monitor_.host().protection, this);
    model_->setDetails(
        [this](const ProcessSample& row) { return monitor_.processDetails().find(row); });
    table_ = new ProcessTableView(card_);
    table_->setObjectName(u"processes.table"_s);
    table_->setAccessibleName(text(title(ActivityListMode::load)));
    table_->horizontalHeader()->hide();
    table_->setModel(model_);
    header_ = new OrderHeader(*table_, card_);
    connect(header_, &OrderHeader::clicked, this,
            [this](ProcessColumn column) { setOrder(orderAfterClick(order_, column)); });
    connect(header_, &OrderHeader::impactOrderWanted, this, [this] { setOrder(std::nullopt); });
    connect(table_, &ProcessTableView::reviewRequested, this, &LoadPage::review);
    rows_ = new ProcessRows(*table_, *model_, monitor_.services().clock, this);
    connect(rows_, &ProcessRows::viewChanged, this, &LoadPage::wantDetails);
    card_->contentLayout()->addWidget(header_);
    card_->contentLayout()->addItem(new WholeRowsItem(table_));
}

void LoadPage::fold() {
    // The caption says by what the rows are sorted.
    card_->setCaption(height() >= captionPageHeight && !order_
                          ? text(subtitle(ActivityListMode::load))
                          : QString());
    const int heading = spacing::iconRegular + spacing::unit +
                        QFontMetrics(CrestFonts::current().heading)
                            .horizontalAdvance(text(title(ActivityListMode::load)));
    const int card = std::min(width() - 2 * spacing::pagePadding, spacing::widestContent);
    const int room = card - 2 * spacing::cardPadding - heading - 2 * spacing::unit;
    const int status = statusWidth();
    const bool isInTitle = tools_->fold(room - status - spacing::unit);
    if (!isInTitle) {
        tools_->fold(room);
    }
    status_->setMinimumWidth(isInTitle ? status : 0);
    placeStatus(isInTitle);
}

int LoadPage::statusWidth() const {
    int widest = 0;
    for (const QString& pattern : statusPatterns(monitor_.services().clock.now())) {
        widest = std::max(widest, figuresWidth(CrestFonts::current().caption, pattern) + 1);
    }
    return widest;
}

void LoadPage::placeStatus(bool isInTitle) {
    QBoxLayout* from = card_->headerLayout();
    QBoxLayout* to = card_->contentLayout();
    int place = 0;
    if (isInTitle) {
        std::swap(from, to);
        place = to->indexOf(tools_);
    }
    if (to->indexOf(status_) < 0) {
        from->removeWidget(status_);
        to->insertWidget(place, status_);
        // Beside the status, only the tools take the space that is left, not the heading.
        constexpr int headingPlace = 1;  // behind the icon, see `Card::headerLayout`
        card_->headerLayout()->setStretch(headingPlace, isInTitle ? 0 : 1);
    }
}

void LoadPage::resizeEvent(QResizeEvent* event) {
    Screen::resizeEvent(event);
    fold();
}

void LoadPage::changeEvent(QEvent* event) {
    Screen::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        fold();
    }
}

std::vector<Observable*> LoadPage::shows() const {
    return {&monitor_.sample().observable(), &monitor_.processDetails().observable(),
            &monitor_.actions().review.observable(), &monitor_.settingsOwner().observable(),
            &state_.navigation.observable()};
}

std::vector<HeaderAction> LoadPage::headerActions() {
    return {{commands::selectTopProcess, u"load.select-top"_s,
             [this] { announceSelection(monitor_.actions().review.selectTopProcess()); }},
            {commands::activityMonitor.titled("Activity"), u"load.activity"_s,
             [this] { monitor_.actions().applications.openActivityMonitor(); }}};
}

void LoadPage::refresh() {
    const auto& snapshot = monitor_.sample().snapshot();
    if (snapshot) {
        followSelection();
    }
    const std::string& filter = state_.navigation.processFilter();
    if (tools_->filter().toStdString() != filter) {
        tools_->setFilter(text(filter));
    }
    const std::optional<Date> sampledAt = dashboard_text::sampledAt(snapshot);
    if (sampledAt) {
        updateRows(*sampledAt);
    }
    model_->setProtectedAppNames(monitor_.settings().protectedAppNames);
    const ReviewTarget& review = monitor_.actions().review;
    // Another process may have the PID of the one that was selected.
    model_->setSelectedPID(review.selectedRow() != nullptr ? review.selectedPID() : std::nullopt);
    const auto lines = loadLines({.sampledAt = sampledAt,
                                  .hasProcesses = !monitor_.sample().latestProcesses().empty(),
                                  .shownRows = shownRows_,
                                  .order = order_});
    status_->setText(lines.status);
    table_->setEmptyDetail(lines.emptyDetail);
    setSpokenDescription(*table_, lines.description);
    wantDetails();
}

void LoadPage::updateRows(Date sampledAt) {
    const ProcessDetails& details = monitor_.processDetails();
    const std::string& typed = state_.navigation.processFilter();
    const QString filter = text(typed);
    const List list{sampledAt, typed, order_, isBlankFilter(filter) ? 0 : details.revision()};
    if (list != shown_) {
        const LatestSample& sample = monitor_.sample();
        std::vector<ProcessSample> rows = orderedProcesses(
            filteredProcesses(rowsInOrder(sample.latestProcesses(), sample.impactOrder()), filter,
                              [&details](const ProcessSample& row) { return details.find(row); }),
            order_);
        shownRows_ = static_cast<int>(rows.size());
        rows_->show(std::move(rows), shown_ && shown_->filter == typed && shown_->order == order_);
        shown_ = list;
    }
    if (details.revision() != shownDetails_) {
        shownDetails_ = details.revision();
        model_->showDetails();
    }
}

void LoadPage::setOrder(std::optional<ProcessOrder> order) {
    order_ = order;
    header_->setOrder(order_);
    fold();
    refresh();
    table_->scrollToTop();
    announce(*this, orderWords(order_));
}

void LoadPage::wantDetails() {
    if (!isVisible()) {
        return;
    }
    if (isBlankFilter(tools_->filter())) {
        monitor_.processDetails().want(rows_->inView());
        return;
    }
    std::vector<const ProcessSample*> wanted;
    for (const ProcessSample& row : monitor_.sample().latestProcesses()) {
        wanted.push_back(&row);
    }
    monitor_.processDetails().want(wanted);
}

void LoadPage::followSelection() {
    const ReviewTarget& review = monitor_.actions().review;
    const auto selected = review.selectedPID();
    const bool isOwners = review.chosenBy() == ReviewTarget::ChosenBy::owner;
    // A selection made by a rule must not scroll the list while somebody reads it.
    if (selected != shownSelection_ && (isOpening_ || isOwners)) {
        isSelectionDue_ = true;
    }
    if (selected && isSelectionDue_) {
        clearHidingFilter(review, monitor_.processDetails(), state_.navigation);
    }
    if (selected && (isSelectionDue_ || isOpening_)) {
        // Queued: by then the layout is done and the rows are those of this refresh.
        QMetaObject::invokeMethod(this, &LoadPage::scrollToSelection, Qt::QueuedConnection);
    }
    shownSelection_ = selected;
    isSelectionDue_ = false;
    isOpening_ = false;
}

void LoadPage::scrollToSelection() {
    const ProcessSample* reviewed = monitor_.actions().review.selectedRow();
    const auto& rows = model_->rows();
    const ProcessSample* row = reviewed != nullptr ? findProcess(rows, reviewed->pid) : nullptr;
    if (row == nullptr) {
        return;
    }
    const QModelIndex index = model_->index(static_cast<int>(row - rows.data()), 0);
    const QRect place = table_->visualRect(index);
    if (place.top() < 0 || place.bottom() >= table_->viewport()->height()) {
        table_->scrollTo(index, QAbstractItemView::PositionAtCenter);
    }
    table_->setCurrentIndex(index);
}

void LoadPage::showSelection() {
    isSelectionDue_ = true;
    if (isVisible()) {
        refresh();
    }
}

void LoadPage::hideEvent(QHideEvent* event) {
    Screen::hideEvent(event);
    // Minimising the window keeps the scroll position.
    isOpening_ = isOpening_ || !event->spontaneous();
}

void LoadPage::focusSearch() {
    tools_->focusFilter();
}

void LoadPage::review(const QModelIndex& index) {
    const ProcessSample& row = model_->rows().at(static_cast<std::size_t>(index.row()));
    // The owner has just clicked the row, so it is in view.
    shownSelection_ = row.pid;
    monitor_.actions().review.selectProcess(row);
    announce(*this, process_words::underReview(row));
}

}  // namespace tallowcrest
