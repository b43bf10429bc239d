#include "presentation/screens/load/load_page.h"

#include <algorithm>

#include <QAction>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/desktop_actions.h"
#include "actions/review_target.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/load/load_lines.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/screens/shared/process_table_model.h"
#include "presentation/screens/shared/process_table_view.h"
#include "presentation/screens/shared/review_process.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/process_filter.h"
#include "sampling/app_impact.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

using dashboard_text::text;

LoadPage::LoadPage(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, spacing::pagePadding);
    auto* card = new Card(this);
    card->setObjectName(u"processes"_s);
    card->setMaximumWidth(spacing::widestContent);
    card->setHeader(u"gauge.with.dots.needle.67percent"_s, text(title(ActivityListMode::load)));
    card->setCaption(text(subtitle(ActivityListMode::load)));
    card->contentLayout()->addWidget(makeToolRow());
    status_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), card);
    status_->setObjectName(u"processes.sort-status"_s);
    card->contentLayout()->addWidget(status_);

    model_ = new ProcessTableModel(monitor_.host().protection, this);
    table_ = new ProcessTableView(card);
    table_->setObjectName(u"processes.table"_s);
    table_->setAccessibleName(text(title(ActivityListMode::load)));
    table_->setModel(model_);
    connect(table_, &ProcessTableView::reviewRequested, this, &LoadPage::review);
    card->contentLayout()->addItem(new WholeRowsItem(table_));
    layout->addWidget(card, 1);
}

QWidget* LoadPage::makeToolRow() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);

    auto* selectTopRow = makeButton(u"Select Top Row"_s, u"scope"_s, u"processes.select-top-row"_s,
                                    u"Selects the first row of the list for review"_s, row);
    connect(selectTopRow, &QPushButton::clicked, this, [this] {
        if (monitor_.actions().review.selectFirstProcess(model_->rows()).isAccepted()) {
            showSelection();
        }
    });
    auto* activityMonitor =
        makeButton(commands::activityMonitor, u"processes.activity-monitor"_s, row);
    connect(activityMonitor, &QPushButton::clicked, this,
            [this] { monitor_.actions().applications.openActivityMonitor(); });

    filter_ = new QLineEdit(row);
    filter_->setObjectName(u"processes.filter"_s);
    filter_->setPlaceholderText(u"Filter processes"_s);
    filter_->setAccessibleName(u"Filter processes"_s);
    filter_->setAccessibleDescription(u"Keeps rows by name, path or PID"_s);
    filter_->setClearButtonEnabled(true);
    filter_->setMaxLength(1024);
    filter_->setMinimumWidth(20 * spacing::unit);
    filter_->setMaximumWidth(32 * spacing::unit);
    filter_
        ->addAction(themedIcon(u"magnifyingglass"_s, &CrestTheme::secondaryText),
                    QLineEdit::LeadingPosition)
        ->setText(u"Filter processes"_s);
    // The built-in clear button has no text.
    for (QAction* action : filter_->findChildren<QAction*>()) {
        if (action->text().isEmpty()) {
            action->setText(u"Clear filter"_s);
        }
    }
    const auto onKey = [this](Qt::Key key, auto handler) {
        connect(new QShortcut(key, filter_, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, this, handler);
    };
    onKey(Qt::Key_Escape, [this] { filter_->clear(); });
    onKey(Qt::Key_Down, [this] {
        table_->setFocus(Qt::TabFocusReason);
        if (!table_->currentIndex().isValid()) {
            table_->setCurrentIndex(model_->index(0, 0));
        }
    });
    connect(filter_, &QLineEdit::textChanged, this, [this](const QString& typed) {
        state_.navigation.setProcessFilter(typed.toStdString());
    });

    layout->addWidget(selectTopRow);
    layout->addWidget(activityMonitor);
    layout->addStretch(1);
    layout->addWidget(filter_, 1);
    return row;
}

std::vector<Observable*> LoadPage::shows() const {
    return {&monitor_.sample().observable(), &monitor_.actions().review.observable(),
            &monitor_.settingsOwner().observable(), &state_.navigation.observable()};
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
    if (filter_->text().toStdString() != filter) {
        filter_->setText(text(filter));
    }
    const std::optional<Date> sampledAt = dashboard_text::sampledAt(snapshot);
    if (sampledAt && (*sampledAt != shownSample_ || filter != shownFilter_)) {
        const LatestSample& sample = monitor_.sample();
        // When the process of the current row ends, the view must not scroll to the next one.
        table_->setAutoScroll(false);
        model_->setRows(filteredProcesses(
            rowsInOrder(sample.latestProcesses(), sample.impactOrder()), text(filter)));
        table_->setAutoScroll(true);
        shownSample_ = *sampledAt;
        shownFilter_ = filter;
    }
    model_->setProtectedAppNames(monitor_.settings().protectedAppNames);
    const ReviewTarget& review = monitor_.actions().review;
    // Another process may have the PID of the one that was selected.
    model_->setSelectedPID(review.selectedRow() != nullptr ? review.selectedPID() : std::nullopt);
    const auto lines = loadLines({.sampledAt = sampledAt,
                                  .hasProcesses = !monitor_.sample().latestProcesses().empty(),
                                  .shownRows = model_->rowCount()});
    status_->setText(lines.status);
    table_->setEmptyDetail(lines.emptyDetail);
    setSpokenDescription(*table_, lines.description);
}

void LoadPage::followSelection() {
    const auto selected = monitor_.actions().review.selectedPID();
    const bool isNewSample = monitor_.sample().snapshot()->sampledAt != shownSample_;
    // A selection made by a rule during a sample must not scroll the list while somebody reads it.
    if (selected != shownSelection_ && (isOpening_ || !isNewSample)) {
        isSelectionDue_ = true;
    }
    if (selected && isSelectionDue_) {
        clearHidingFilter(monitor_.sample(), monitor_.actions().review, state_.navigation);
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
    const auto& rows = model_->rows();
    const auto selected = std::find_if(rows.begin(), rows.end(), [this](const ProcessSample& row) {
        return row.pid == monitor_.actions().review.selectedPID();
    });
    if (selected == rows.end()) {
        return;
    }
    const QModelIndex index = model_->index(static_cast<int>(selected - rows.begin()), 0);
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
    filter_->setFocus(Qt::ShortcutFocusReason);
    filter_->selectAll();
}

void LoadPage::review(const QModelIndex& index) {
    const ProcessSample& row = model_->rows().at(static_cast<std::size_t>(index.row()));
    // The owner has just clicked the row, so it is in view.
    shownSelection_ = row.pid;
    monitor_.actions().review.selectProcess(row);
}

}  // namespace tallowcrest
