#include "presentation/screens/optimize/offender_card.h"

#include <algorithm>

#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/optimize/optimize_lines.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/screens/shared/process_rows.h"
#include "presentation/screens/shared/process_table_view.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/card_grid.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/summary_card.h"
#include "presentation/widgets/text_lines.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using dashboard_text::text;

/// Two cards fit side by side in the smallest window.
constexpr int narrowestCard = 224;
/// A group may have hundreds of processes; the table scrolls beyond these.
constexpr int mostRows = 8;

void showQuit(DangerButton& button, const optimize_lines::QuitButton& shown) {
    setButtonEnabled(button, shown.isEnabled);
    if (button.accessibleDescription() != shown.description) {
        button.setAccessibleDescription(shown.description);
        button.setToolTip(toolTipText(shown.description));
    }
}

}  // namespace

OffenderCard::OffenderCard(ProtectionPolicy policy, const Clock& clock, QWidget* parent)
    : Card(parent), model_(policy) {
    setObjectName(u"cleanup.offender"_s);
    setHeader(u"scope"_s, optimize_lines::heading({}));
    explanation_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    explanation_->setObjectName(u"cleanup.explanation"_s);
    // Enough for a name of any length: the end of the text says whether the process is protected.
    explanation_->setLines(1, 8);
    contentLayout()->addWidget(explanation_);
    contentLayout()->addWidget(makeQuitButtons());

    target_ = new QWidget(this);
    auto* layout = new QVBoxLayout(target_);
    layout->setContentsMargins(0, spacing::unit / 2, 0, 0);
    layout->setSpacing(spacing::unit);
    layout->addWidget(makeCards());
    auto* quitHint = new ElidedLabel(
        u"Use File > Quit Selected Process or Quit Selected App Group only after "
        "review."_s,
        onCard(&CrestFonts::caption, &CrestTheme::secondaryText), target_);
    quitHint->setObjectName(u"cleanup.quit-hint"_s);
    quitHint->setLines(1, 2);
    layout->addWidget(quitHint);
    layout->addWidget(makeHelpers());
    rows_ = new ProcessRows(*table_, model_, clock, this);
    connect(rows_, &ProcessRows::viewChanged, this, [this] {
        fitTable();
        emit rowsInViewChanged();
    });
    target_->hide();
    contentLayout()->addWidget(target_);
}

QWidget* OffenderCard::makeQuitButtons() {
    auto* buttons = new FlowRow(spacing::unit, this);
    quitProcess_ = makeDangerButton({"Quit Process…", "", ""}, u"cleanup.quit-process"_s, buttons);
    quitApp_ = makeDangerButton({"Quit App Group…", "", ""}, u"cleanup.quit-app"_s, buttons);
    buttons->addItem(quitProcess_);
    buttons->addItem(quitApp_);
    connect(quitProcess_, &QPushButton::clicked, this, &OffenderCard::quitProcessWanted);
    connect(quitApp_, &QPushButton::clicked, this, &OffenderCard::quitAppWanted);
    return buttons;
}

QWidget* OffenderCard::makeCards() {
    auto* cards = new CardGrid(narrowestCard, target_);
    group_ = new SummaryCard(u"App Group"_s);
    group_->setObjectName(u"cleanup.app-group"_s);
    neverQuit_ = makeNeverQuit();
    group_->contentLayout()->addWidget(neverQuit_, 0, Qt::AlignLeft);
    risk_ = new SummaryCard(u"Risk"_s);
    risk_->setObjectName(u"cleanup.risk"_s);
    risk_->setDetail(u"Tallowcrest will not quit this automatically."_s);
    cards->addCard(group_);
    cards->addCard(risk_);
    cards->setShownCount(2);
    return cards;
}

QPushButton* OffenderCard::makeNeverQuit() {
    auto* button = makeButton(u"Never Quit: Off"_s, u"lock.shield"_s, u"cleanup.never-quit"_s,
                              QString(), group_);
    button->setCheckable(true);
    connect(button, &QPushButton::clicked, this, [this] {
        // The group that the button names. Another one may be under review by now.
        if (shownGroup_) {
            emit neverQuitToggled(*shownGroup_);
        }
    });
    return button;
}

QWidget* OffenderCard::makeHelpers() {
    auto* helpers = new QWidget(target_);
    auto* layout = new QVBoxLayout(helpers);
    layout->setContentsMargins(0, spacing::unit, 0, 0);
    layout->setSpacing(spacing::unit / 2);
    const QString title = u"Related Helper Processes"_s;
    auto* heading = new ElidedLabel(title, onCard(&CrestFonts::heading), helpers);
    layout->addWidget(heading);
    noHelpers_ = new ElidedLabel(u"No process of this group is in the latest sample."_s,
                                 onCard(&CrestFonts::body, &CrestTheme::secondaryText), helpers);
    noHelpers_->setObjectName(u"cleanup.no-helpers"_s);
    layout->addWidget(noHelpers_);

    model_.setMemoryDecimals(0);
    table_ = new ProcessTableView(helpers);
    table_->setObjectName(u"cleanup.helpers"_s);
    table_->setAccessibleName(title);
    table_->setAccessibleDescription(
        u"Processes of the selected app group. Return on a row selects it for "
        "review."_s);
    table_->setModel(&model_);
    table_->installEventFilter(this);
    connect(table_, &ProcessTableView::reviewRequested, this, [this](const QModelIndex& index) {
        emit reviewWanted(model_.rows().at(static_cast<std::size_t>(index.row())));
    });
    layout->addWidget(table_);
    return helpers;
}

void OffenderCard::show(optimize_lines::Offender offender,
                        const ProtectedAppNames& protectedAppNames) {
    const bool hasTarget = offender.target.has_value();
    setHeader(u"scope"_s, offender.heading);
    explanation_->setText(offender.explanation);
    explanation_->setColor(hasTarget ? &CrestTheme::text : &CrestTheme::secondaryText);
    showQuit(*quitProcess_, offender.quitProcess);
    showQuit(*quitApp_, offender.quitApp);
    model_.setProtectedAppNames(protectedAppNames);
    if (hasTarget) {
        showTarget(*std::move(offender.target));
    } else {
        shownGroup_.reset();
        rows_->show({}, false);
    }
    target_->setVisible(hasTarget);
}

void OffenderCard::showTarget(optimize_lines::Target target) {
    const bool isSameGroup = shownGroup_ == target.group;
    shownGroup_ = std::move(target.group);
    group_->setValue(target.groupCard.value);
    group_->setDetail(target.groupCard.detail);
    risk_->setValue(target.risk);
    neverQuit_->setVisible(shownGroup_.has_value());
    if (shownGroup_) {
        showNeverQuit(target.isNeverQuit);
    }
    rows_->show(std::move(target.helpers), isSameGroup);
    model_.setSelectedPID(target.selectedPID);
    fitTable();
}

void OffenderCard::showNeverQuit(bool isOn) {
    const QString state = isOn ? u"Never Quit: On"_s : u"Never Quit: Off"_s;
    if (neverQuit_->text() != state) {
        neverQuit_->setText(state);
        neverQuit_->setIcon(themedIcon(isOn ? u"lock.fill"_s : u"lock.shield"_s));
    }
    neverQuit_->setChecked(isOn);
    const QString name = u"Never Quit "_s + text(*shownGroup_);
    const QString act = isOn ? u"Takes this app group off the Never Quit list"_s
                             : u"Puts this app group on the Never Quit list, which "
                               "protects it from quit actions"_s;
    setSpokenName(*neverQuit_, name);
    setExplanation(*neverQuit_, act);
}

std::vector<const ProcessSample*> OffenderCard::rowsInView() const {
    return rows_->inView();
}

void OffenderCard::fitTable() {
    noHelpers_->setVisible(model_.rows().empty());
    table_->setVisible(!model_.rows().empty());
    const int height = table_->heightOfRows(std::clamp(model_.rowCount(), 1, mostRows));
    if (table_->minimumHeight() != height || table_->maximumHeight() != height) {
        table_->setFixedHeight(height);
    }
}

bool OffenderCard::eventFilter(QObject* object, QEvent* event) {
    if (object == table_ && event->type() == QEvent::ShortcutOverride &&
        model_.rowCount() > mostRows) {
        // These keys scroll the page, unless the list itself has more rows than it shows.
        if (isPageScrollKey(static_cast<QKeyEvent*>(event)->key())) {
            event->accept();
            return true;
        }
    }
    return Card::eventFilter(object, event);
}

}  // namespace tallowcrest
