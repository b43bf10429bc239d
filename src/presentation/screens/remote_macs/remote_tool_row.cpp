#include "presentation/screens/remote_macs/remote_tool_row.h"

#include <algorithm>

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>

#include "presentation/widgets/button.h"
#include "presentation/widgets/menu_button.h"
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
        tools_.push_back({operation, button, entry});
        row->addWidget(button);
    }
    row->addWidget(more_);
    // Assistive technology reads the children in their order.
    more_->raise();
    row->addStretch(1);
}

void RemoteToolRow::show(const RemoteHealth& machine) {
    const auto foremost = remote_health_lines::foremostTools(machine.status);
    for (const Tool& tool : tools_) {
        const bool isForemost = std::ranges::find(foremost, tool.operation) != foremost.end();
        const bool isEnabled = remote_health_lines::isEnabled(tool.operation, machine);
        tool.button->setVisible(isForemost);
        tool.button->setEnabled(isEnabled);
        tool.entry->setVisible(!isForemost);
        tool.entry->setEnabled(isEnabled);
    }
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
