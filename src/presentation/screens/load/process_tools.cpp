#include "presentation/screens/load/process_tools.h"

#include <chrono>
#include <utility>

#include <QAction>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// Longer than between two keys.
constexpr std::chrono::milliseconds typingPause{800};

constexpr Command selectTopRow{"Select Top Row", "scope",
                               "Selects the first row of the list for review"};

}  // namespace

ProcessTools::ProcessTools(QWidget* parent) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    selectTopRow_ = makeButton(selectTopRow, u"processes.select-top-row"_s, this);
    connect(selectTopRow_, &QPushButton::clicked, this, &ProcessTools::selectTopRowWanted);
    activityMonitor_ = makeButton(commands::activityMonitor, u"processes.activity-monitor"_s, this);
    connect(activityMonitor_, &QPushButton::clicked, this, &ProcessTools::activityMonitorWanted);
    filter_ = makeFilter();
    layout->addStretch(1);
    layout->addWidget(selectTopRow_);
    layout->addWidget(activityMonitor_);
    layout->addWidget(filter_, 1);
}

QLineEdit* ProcessTools::makeFilter() {
    auto* field = new QLineEdit(this);
    field->setObjectName(u"processes.filter"_s);
    field->setPlaceholderText(u"Filter processes"_s);
    field->setAccessibleName(u"Filter processes"_s);
    field->setAccessibleDescription(
        u"Keeps rows by name, path, PID, another user or command line"_s);
    field->setClearButtonEnabled(true);
    field->setMaxLength(1024);
    field->setMinimumWidth(20 * spacing::unit);
    field->setMaximumWidth(32 * spacing::unit);
    field
        ->addAction(themedIcon(u"magnifyingglass"_s, &CrestTheme::secondaryText),
                    QLineEdit::LeadingPosition)
        ->setText(u"Filter processes"_s);
    // The built-in clear button has no text.
    for (QAction* action : field->findChildren<QAction*>()) {
        if (action->text().isEmpty()) {
            action->setText(u"Clear filter"_s);
        }
    }
    const auto onKey = [this, field](Qt::Key key, auto handler) {
        connect(new QShortcut(key, field, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, this, handler);
    };
    onKey(Qt::Key_Escape, [field] { field->clear(); });
    onKey(Qt::Key_Down, [this] { emit rowsWanted(); });
    connect(field, &QLineEdit::textChanged, this, &ProcessTools::filterTyped);
    pause_ = new QTimer(this);
    pause_->setObjectName(u"processes.filter.pause"_s);
    pause_->setSingleShot(true);
    pause_->setInterval(typingPause);
    connect(pause_, &QTimer::timeout, this, &ProcessTools::typingPaused);
    connect(field, &QLineEdit::textChanged, this, [this, field] {
        // Not when the page sets the text.
        if (field->hasFocus()) {
            pause_->start();
        }
    });
    return field;
}

bool ProcessTools::fold(int room) {
    for (const auto& [hasIcons, hasWords] :
         {std::pair(true, true), std::pair(false, true), std::pair(true, false)}) {
        showButtons(hasIcons, hasWords);
        if (selectTopRow_->sizeHint().width() + activityMonitor_->sizeHint().width() +
                filter_->minimumWidth() + 2 * spacing::unit <=
            room) {
            return true;
        }
    }
    return false;
}

void ProcessTools::showButtons(bool hasIcons, bool hasWords) {
    const auto show = [=](QPushButton& button, const Command& command) {
        // The accessible name and the tool tip say what an icon alone stands for.
        const QString words = hasWords ? button.accessibleName() : QString();
        if (button.text() != words || button.icon().isNull() == hasIcons) {
            button.setText(words);
            button.setIcon(hasIcons ? themedIcon(QString::fromUtf8(command.icon)) : QIcon());
        }
    };
    show(*selectTopRow_, selectTopRow);
    show(*activityMonitor_, commands::activityMonitor);
}

QString ProcessTools::filter() const {
    return filter_->text();
}

void ProcessTools::setFilter(const QString& filter) {
    filter_->setText(filter);
}

void ProcessTools::focusFilter() {
    filter_->setFocus(Qt::ShortcutFocusReason);
    filter_->selectAll();
}

}  // namespace tallowcrest
