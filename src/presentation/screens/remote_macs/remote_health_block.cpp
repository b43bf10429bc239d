#include "presentation/screens/remote_macs/remote_health_block.h"

#include <QPainter>
#include <QVBoxLayout>

#include "presentation/screens/remote_macs/remote_health_head.h"
#include "presentation/screens/remote_macs/remote_profile_editor.h"
#include "presentation/screens/remote_macs/remote_rows.h"
#include "presentation/screens/remote_macs/remote_tool_row.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"
#include "presentation/widgets/two_columns.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int barWidth = 3;
constexpr int barInset = 12;

}  // namespace

RemoteHealthBlock::RemoteHealthBlock(const QString& identifier, QWidget* parent) : Card(parent) {
    installAccessibleFigures();
    setObjectName(identifier);
    // The head includes the card's padding, so that all of it is clickable.
    layout()->setContentsMargins(0, 0, 0, 0);
    contentLayout()->setSpacing(0);
    head_ = new RemoteHealthHead(this);
    head_->setObjectName(identifier + u".head"_s);
    contentLayout()->addWidget(head_);
    setFocusProxy(head_);
    connect(head_, &CollapseButton::collapseWanted, this, [this](bool collapsed) {
        isChosen_ = true;
        setExpanded(!collapsed);
        emit expandedChanged(!collapsed);
    });
}

bool RemoteHealthBlock::isExpanded() const {
    return head_->isExpanded();
}

void RemoteHealthBlock::show(const RemoteHealthFacts& facts) {
    facts_ = facts;
    const bool neededAttention = head_->shown().needsAttention();
    head_->show(remote_health_lines::head(facts));
    setSpokenName(*this, head_->shown().name);
    if (head_->shown().needsAttention() != neededAttention) {
        update();
    }
    const bool opensByItself =
        facts.isSelected || facts.showsDetails || head_->shown().needsAttention();
    if (opensByItself && !isChosen_ && !isExpanded()) {
        setExpanded(true);
    } else if (isExpanded()) {
        showDetails();
    }
}

void RemoteHealthBlock::setExpanded(bool expanded) {
    if (expanded) {
        if (details_ == nullptr) {
            makeDetails();
        }
        showDetails();
    }
    head_->setExpanded(expanded);
    details_->setVisible(expanded);
}

void RemoteHealthBlock::makeDetails() {
    details_ = new QWidget(this);
    auto* column = new QVBoxLayout(details_);
    column->setContentsMargins(spacing::cardPadding, spacing::unit / 2, spacing::cardPadding,
                               spacing::cardPadding);
    column->setSpacing(spacing::gap);
    column->addWidget(makeFacts());
    editor_ = new RemoteProfileEditor(objectName(), details_);
    // A copy goes with each signal: its receiver may show other facts.
    connect(editor_, &RemoteProfileEditor::changed, this,
            [this](const RemoteProfileChange& change) {
                emit profileChanged(RemoteHealth(machine()), change);
            });
    column->addWidget(editor_);
    lists_ = makeRows();
    column->addWidget(lists_);
    tools_ = new RemoteToolRow(objectName(), details_);
    connect(tools_, &RemoteToolRow::wanted, this, [this](RemoteOperation operation) {
        emit operationWanted(RemoteHealth(machine()), operation);
    });
    column->addWidget(tools_);
    contentLayout()->addWidget(details_);
    chainTabs(nullptr);
}

QWidget* RemoteHealthBlock::makeFacts() {
    auto* facts = new QWidget(details_);
    auto* column = new QVBoxLayout(facts);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing::unit / 2);
    const auto addLabel = [&](const char* part, const LabelStyle& style) {
        auto* label = new ElidedLabel(style, facts);
        label->setObjectName(objectName() + QString::fromLatin1(part));
        column->addWidget(label);
        return label;
    };
    const LabelStyle plain = onCard(&CrestFonts::body, &CrestTheme::secondaryText);
    profile_ = addLabel(".profile", plain);
    system_ = addLabel(".system", plain);
    topCPU_ = addLabel(".top-cpu", plain);
    topMemory_ = addLabel(".top-memory", plain);
    for (ElidedLabel* label : {topCPU_, topMemory_}) {
        // The name of a process ends its path.
        label->setElideMode(Qt::ElideMiddle);
    }
    column->addSpacing(spacing::unit / 2);
    recommendation_ = addLabel(".recommendation", onCard(&CrestFonts::heading));
    setupHint_ = addLabel(".setup-hint", plain);
    result_ = addLabel(".result", plain);
    for (ElidedLabel* label : {recommendation_, setupHint_, result_}) {
        label->setLines(1, 4);
    }
    return facts;
}

QWidget* RemoteHealthBlock::makeRows() {
    auto* columns = new TwoColumns(details_);
    processes_ = new RemoteRows(u"Remote Processes"_s, RemoteRows::Action::quit, objectName());
    apps_ = new RemoteRows(u"Remote App Impact"_s, RemoteRows::Action::neverQuit, objectName());
    columns->setColumns({processes_}, {apps_});
    processes_->setFocusProxy(head_);
    apps_->setFocusProxy(head_);
    connect(processes_, &RemoteRows::copyWanted, this, [this](std::size_t row) {
        const RemoteHealth shown = machine();
        emit processCopyWanted(shown, shown.topProcesses.at(row));
    });
    connect(processes_, &RemoteRows::actionWanted, this, [this](std::size_t row) {
        const RemoteHealth shown = machine();
        emit processQuitWanted(shown, shown.topProcesses.at(row));
    });
    connect(apps_, &RemoteRows::copyWanted, this, [this](std::size_t row) {
        const RemoteHealth shown = machine();
        emit appCopyWanted(shown, shown.appImpacts.at(row));
    });
    connect(apps_, &RemoteRows::actionWanted, this, [this](std::size_t row) {
        emit neverQuitWanted(RemoteAppImpact(machine().appImpacts.at(row)));
    });
    return columns;
}

void RemoteHealthBlock::showDetails() {
    using namespace remote_health_lines;
    const RemoteHealth& machine = facts_->machine;
    profile_->setText(profileLine(facts_->profile));
    system_->setText(systemLine(machine));
    topCPU_->setText(topCPULine(machine));
    topMemory_->setText(topMemoryLine(machine));
    recommendation_->setText(recommendationLine(machine));
    setupHint_->setText(setupHintLine(machine));
    result_->setText(resultLine(*facts_));
    result_->setColor(facts_->lastResult && !facts_->lastResult->outcome.isAccepted()
                          ? &CrestTheme::caution
                          : &CrestTheme::secondaryText);
    result_->setVisible(facts_->lastResult.has_value());
    editor_->show(facts_->profile, machine.isLinux);
    const bool changesProcesses = processes_->show(processRows(*facts_), noRows(machine));
    const bool changesApps = apps_->show(appRows(*facts_), noRows(machine));
    // Empty, it would still take a gap of the column.
    lists_->setVisible(!processes_->isHidden() || !apps_->isHidden());
    tools_->show(machine);
    if (changesProcesses || changesApps) {
        chainTabs(nullptr);
    }
}

QWidget* RemoteHealthBlock::chainTabs(QWidget* before) {
    // A new widget comes last in the tab order of the window by default.
    setTabOrder(before, head_);
    QWidget* last = head_;
    if (details_ == nullptr) {
        return last;
    }
    for (const std::vector<QWidget*>& controls :
         {editor_->controls(), processes_->controls(), apps_->controls(), tools_->controls()}) {
        for (QWidget* control : controls) {
            setTabOrder(last, control);
            last = control;
        }
    }
    return last;
}

void RemoteHealthBlock::paintEvent(QPaintEvent* event) {
    Card::paintEvent(event);
    if (!head_->shown().needsAttention()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(CrestTheme::current().caution);
    painter.drawRoundedRect(
        QRectF(spacing::unit / 2.0, barInset, barWidth, height() - 2 * barInset), barWidth / 2.0,
        barWidth / 2.0);
}

}  // namespace tallowcrest
