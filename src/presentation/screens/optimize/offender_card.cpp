#include "presentation/screens/optimize/offender_card.h"

#include <algorithm>
#include <span>
#include <vector>

#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/load/process_row_delegate.h"
#include "presentation/screens/load/process_table_view.h"
#include "presentation/screens/optimize/helper_processes.h"
#include "presentation/screens/optimize/selected_offender.h"
#include "presentation/widgets/card_grid.h"
#include "presentation/widgets/controls.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/spoken.h"
#include "presentation/widgets/summary_card.h"
#include "presentation/words/dashboard_text.h"

namespace tallowcrest {
namespace {

using dashboard_text::text;

/// Two of them stand beside each other in the smallest window.
constexpr int narrowestCard = 224;
/// A group may have hundreds of processes; the table scrolls beyond these.
constexpr int mostRows = 8;

}  // namespace

OffenderCard::OffenderCard(SystemMonitor& monitor, QWidget* parent)
    : Card(parent), monitor_(monitor) {
    setObjectName(QStringLiteral("cleanup.offender"));
    setHeader(QStringLiteral("scope"), selected_offender::heading({}));
    explanation_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, this);
    explanation_->setObjectName(QStringLiteral("cleanup.explanation"));
    // Room for a name of any length, which must not push out whether the process is protected.
    explanation_->setLines(1, 8);
    explanation_->setGround(&CrestTheme::cardBackground);
    contentLayout()->addWidget(explanation_);

    target_ = new QWidget(this);
    auto* layout = new QVBoxLayout(target_);
    layout->setContentsMargins(0, spacing::unit / 2, 0, 0);
    layout->setSpacing(spacing::unit);
    layout->addWidget(makeCards());
    auto* quitHint = new ElidedLabel(
        QStringLiteral("Use File > Quit Selected Process or Quit Selected App Group only after "
                       "review."),
        &CrestFonts::caption, &CrestTheme::secondaryText, target_);
    quitHint->setObjectName(QStringLiteral("cleanup.quit-hint"));
    quitHint->setLines(1, 2);
    quitHint->setGround(&CrestTheme::cardBackground);
    layout->addWidget(quitHint);
    layout->addWidget(makeHelpers());
    target_->hide();
    contentLayout()->addWidget(target_);
}

QWidget* OffenderCard::makeCards() {
    auto* cards = new CardGrid(narrowestCard, target_);
    group_ = new SummaryCard(QStringLiteral("App Group"));
    group_->setObjectName(QStringLiteral("cleanup.app-group"));
    neverQuit_ = makeNeverQuit();
    group_->contentLayout()->addWidget(neverQuit_, 0, Qt::AlignLeft);
    risk_ = new SummaryCard(QStringLiteral("Risk"));
    risk_->setObjectName(QStringLiteral("cleanup.risk"));
    risk_->setDetail(QStringLiteral("Tallowcrest will not quit this automatically."));
    cards->addCard(group_);
    cards->addCard(risk_);
    cards->setShownCount(2);
    return cards;
}

QPushButton* OffenderCard::makeNeverQuit() {
    auto* button = makeButton(QStringLiteral("Never Quit: Off"), QStringLiteral("lock.shield"),
                              QStringLiteral("cleanup.never-quit"), QString(), group_);
    button->setCheckable(true);
    connect(button, &QPushButton::clicked, this, [this] {
        // The one that the button names: the target may have moved since.
        if (shownGroup_) {
            monitor_.localActions().toggleNeverQuit(*shownGroup_);
        }
    });
    return button;
}

QWidget* OffenderCard::makeHelpers() {
    auto* helpers = new QWidget(target_);
    auto* layout = new QVBoxLayout(helpers);
    layout->setContentsMargins(0, spacing::unit, 0, 0);
    layout->setSpacing(spacing::unit / 2);
    const QString title = QStringLiteral("Related Helper Processes");
    auto* heading = new ElidedLabel(title, &CrestFonts::heading, &CrestTheme::text, helpers);
    heading->setGround(&CrestTheme::cardBackground);
    layout->addWidget(heading);
    noHelpers_ =
        new ElidedLabel(QStringLiteral("No process of this group is in the latest sample."),
                        &CrestFonts::body, &CrestTheme::secondaryText, helpers);
    noHelpers_->setObjectName(QStringLiteral("cleanup.no-helpers"));
    noHelpers_->setGround(&CrestTheme::cardBackground);
    layout->addWidget(noHelpers_);

    model_ = new HelperProcessesModel(monitor_.host().protection, this);
    table_ = new ProcessTableView(helpers);
    table_->setObjectName(QStringLiteral("cleanup.helpers"));
    table_->setAccessibleName(title);
    table_->setAccessibleDescription(
        QStringLiteral("Processes of the selected app group. Return on a row selects it for "
                       "review."));
    table_->setModel(model_);
    table_->installEventFilter(this);
    connect(table_, &ProcessTableView::reviewRequested, this, [this](const QModelIndex& index) {
        monitor_.review().selectProcess(model_->rows().at(static_cast<std::size_t>(index.row())));
    });
    layout->addWidget(table_);
    return helpers;
}

void OffenderCard::refresh() {
    const ReviewTarget& review = monitor_.review();
    shownGroup_ = review.selectedAppImpactName();
    const bool hasTarget = review.selectedPID().has_value();
    if (hasTarget) {
        showTarget();
    } else {
        setHeader(QStringLiteral("scope"), selected_offender::heading({}));
        explanation_->setText(monitor_.sample().snapshot()
                                  ? selected_offender::hint()
                                  : QStringLiteral("Sampling this Mac..."));
        explanation_->setColor(&CrestTheme::secondaryText);
        model_->setRows({});
    }
    target_->setVisible(hasTarget);
}

void OffenderCard::showTarget() {
    const SelectedTargetSummary summary = monitor_.review().selectedTargetSummary();
    const ProcessSample* row = monitor_.review().selectedRow();
    setHeader(QStringLiteral("scope"), selected_offender::heading(summary.title));
    explanation_->setText(row != nullptr ? selected_offender::sentence(*row, summary.isProtected)
                                         : text(summary.detail));
    explanation_->setColor(&CrestTheme::text);

    const auto& snapshot = monitor_.sample().snapshot();
    const auto card = selected_offender::groupCard(
        shownGroup_,
        snapshot ? std::span<const AppImpact>(snapshot->appImpacts) : std::span<const AppImpact>());
    group_->setValue(card.value);
    group_->setDetail(card.detail);
    risk_->setValue(selected_offender::risk(summary.isProtected));
    showNeverQuit();
    showHelpers();
}

void OffenderCard::showNeverQuit() {
    neverQuit_->setVisible(shownGroup_.has_value());
    if (!shownGroup_) {
        return;
    }
    const bool isOn = monitor_.settings().protectedAppNames.contains(*shownGroup_);
    const QString state =
        isOn ? QStringLiteral("Never Quit: On") : QStringLiteral("Never Quit: Off");
    if (neverQuit_->text() != state) {
        neverQuit_->setText(state);
        neverQuit_->setIcon(
            themedIcon(isOn ? QStringLiteral("lock.fill") : QStringLiteral("lock.shield")));
    }
    neverQuit_->setChecked(isOn);
    const QString name = QStringLiteral("Never Quit ") + text(*shownGroup_);
    const QString act = isOn ? QStringLiteral("Takes this app group off the Never Quit list")
                             : QStringLiteral(
                                   "Puts this app group on the Never Quit list, which "
                                   "protects it from quit actions");
    setSpokenName(*neverQuit_, name);
    setSpokenDescription(*neverQuit_, act);
    neverQuit_->setToolTip(act);
}

void OffenderCard::showHelpers() {
    const bool isListed = monitor_.review().selectedRow() != nullptr;
    model_->setProtectedAppNames(monitor_.settings().protectedAppNames);
    model_->setRows(shownGroup_ ? helperProcesses(monitor_.sample(), *shownGroup_)
                                : std::vector<ProcessSample>());
    // Another process may bear the number of the one that was selected.
    model_->setSelectedPID(isListed ? monitor_.review().selectedPID() : std::nullopt);
    noHelpers_->setVisible(model_->rows().empty());
    table_->setVisible(!model_->rows().empty());
    fitTable();
}

void OffenderCard::fitTable() {
    const int rows = std::clamp(model_->rowCount(), 1, mostRows);
    const int header = std::max(table_->horizontalHeader()->minimumHeight(),
                                table_->horizontalHeader()->sizeHint().height());
    const int height = header + rows * ProcessRowDelegate::rowHeight;
    if (table_->minimumHeight() != height || table_->maximumHeight() != height) {
        table_->setFixedHeight(height);
    }
}

bool OffenderCard::eventFilter(QObject* object, QEvent* event) {
    if (object == table_ && event->type() == QEvent::ShortcutOverride &&
        model_->rowCount() > mostRows) {
        // These scroll the page, but for a list that itself has more than it shows.
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_PageUp || key == Qt::Key_PageDown || key == Qt::Key_Home ||
            key == Qt::Key_End) {
            event->accept();
            return true;
        }
    }
    return Card::eventFilter(object, event);
}

}  // namespace tallowcrest
