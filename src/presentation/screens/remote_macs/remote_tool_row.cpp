#include "presentation/screens/remote_macs/remote_tool_row.h"

#include <algorithm>
#include <utility>

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/menu_button.h"
#include "presentation/widgets/settling_button.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

RemoteToolRow::RemoteToolRow(const QString& identifier, QWidget* parent) : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    more_ = new MenuButton(u"More"_s, identifier + u".more"_s,
                           u"Opens the other commands for this machine"_s, this);
    for (const remote_health_lines::Tool& tool : remote_health_lines::tools()) {
        const QString title = QString::fromUtf8(tool.title);
        const QString name = identifier + u'.' + QString::fromUtf8(tool.identifier);
        const QString description = QString::fromUtf8(tool.description);
        auto* button = makeButton(title, QString(), name, description, this);
        auto* entry = more_->menu().addAction(title);
        entry->setObjectName(name);
        entry->setToolTip(description);
        const RemoteOperation operation = tool.operation;
        connect(button, &QPushButton::clicked, this, [=, this] { emit wanted(operation); });
        connect(entry, &QAction::triggered, this, [=, this] { emit wanted(operation); });
        tools_.push_back({&tool, button, entry, std::make_unique<SettlingButton>(*button)});
        row->addWidget(button);
    }
    // Queued: an entry that is hidden as the menu closes would not be triggered.
    connect(&more_->menu(), &QMenu::aboutToHide, this, &RemoteToolRow::showEntries,
            Qt::QueuedConnection);
    row->addWidget(more_);
    // Assistive technology reads the children in their order.
    more_->raise();
    row->addStretch(1);
}

RemoteToolRow::~RemoteToolRow() = default;

void RemoteToolRow::show(const RemoteHealth& machine) {
    auto foremost = remote_health_lines::foremostTools(machine.status);
    for (Tool& tool : tools_) {
        const auto placeIn = [&tool](const std::vector<RemoteOperation>& operations) {
            const auto found = std::ranges::find(operations, tool.words->operation);
            return found == operations.end() ? -1 : found - operations.begin();
        };
        const bool isForemost = placeIn(foremost) >= 0;
        showTool(tool, machine, isForemost);
        const bool hasNewPlace = isForemost && placeIn(foremost) != placeIn(foremost_);
        if (hasNewPlace && !foremost_.empty() && tool.button->isEnabled()) {
            tool.settling->settleInNewPlace();
        }
    }
    foremost_ = std::move(foremost);
    showEntries();
}

void RemoteToolRow::showEntries() {
    if (more_->menu().isVisible()) {
        return;
    }
    for (const Tool& tool : tools_) {
        tool.entry->setVisible(!tool.isForemost);
        tool.entry->setEnabled(tool.isEnabled);
        tool.entry->setToolTip(tool.button->toolTip());
    }
}

void RemoteToolRow::showTool(Tool& tool, const RemoteHealth& machine, bool isForemost) {
    const bool isEnabled = remote_health_lines::isEnabled(tool.words->operation, machine);
    const QString description = remote_health_lines::toolDescription(*tool.words, machine);
    if (!isEnabled) {
        tool.settling->stop();
    }
    tool.isForemost = isForemost;
    tool.isEnabled = isEnabled;
    if (!isForemost && window()->focusWidget() == tool.button) {
        // It is in the menu now. Qt would move the focus to any next control.
        more_->setFocus();
    }
    tool.button->setVisible(isForemost);
    setButtonEnabled(*tool.button, isEnabled && !tool.settling->isSettling());
    setExplanation(*tool.button, description);
}

std::vector<QWidget*> RemoteToolRow::controls() const {
    std::vector<QWidget*> controls;
    for (const Tool& tool : tools_) {
        controls.push_back(tool.button);
    }
    controls.push_back(more_);
    return controls;
}

}  // namespace tallowcrest
