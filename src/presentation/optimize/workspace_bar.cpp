#include "presentation/optimize/workspace_bar.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QAccessibleWidget>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/elided_label.h"
#include "presentation/optimize/flow_row.h"
#include "presentation/theme.h"

namespace tallowcrest {
namespace {

constexpr int tabHeight = 28;
constexpr int tabPadding = 12;
constexpr int tabRadius = 6;
constexpr int frameInset = 2;
constexpr int frameRadius = tabRadius + frameInset;
constexpr float selectedOpacity = 0.18F;
constexpr float hoverOpacity = 0.06F;

struct Step {
    AppRoute route;
    const char* title;
    const char* identifier;
};

constexpr std::array steps{
    Step{AppRoute::optimizationSuggestions, "Recommended", "optimize.recommended"},
    Step{AppRoute::optimize, "Cleanup", "optimize.cleanup"},
    Step{AppRoute::aiAdvisor, "AI Advisor", "optimize.ai-advisor"},
    Step{AppRoute::chat, "Ask AI", "optimize.ask-ai"},
};

QColor withOpacity(QColor color, float opacity) {
    color.setAlphaF(opacity);
    return color;
}

class WorkspaceTabInterface final : public QAccessibleWidget {
public:
    explicit WorkspaceTabInterface(WorkspaceTab* tab)
        : QAccessibleWidget(tab, QAccessible::PageTab) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (const auto* tab = qobject_cast<const WorkspaceTab*>(object())) {
            state.selectable = true;
            state.selected = tab->isChecked();
        }
        return state;
    }

    QStringList actionNames() const override {
        return QStringList(pressAction()) + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override {
        auto* tab = qobject_cast<WorkspaceTab*>(object());
        if (name == pressAction() && tab != nullptr) {
            tab->click();
            return;
        }
        QAccessibleWidget::doAction(name);
    }
};

QAccessibleInterface* workspaceTabInterface(const QString&, QObject* object) {
    auto* tab = qobject_cast<WorkspaceTab*>(object);
    return tab != nullptr ? new WorkspaceTabInterface(tab) : nullptr;
}

void installWorkspaceTabs() {
    static const bool installed = [] {
        QAccessible::installFactory(workspaceTabInterface);
        return true;
    }();
    static_cast<void>(installed);
}

/// The frame that shows the tabs as one choice.
class TabFrame final : public QWidget, public AccessibleFigure {
public:
    explicit TabFrame(QWidget* parent) : QWidget(parent) {
        installAccessibleFigures();
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    QAccessible::Role accessibleRole() const override { return QAccessible::PageTabList; }
    QString accessibleValue() const override { return {}; }

protected:
    void paintEvent(QPaintEvent*) override {
        const CrestTheme& theme = CrestTheme::current();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(theme.hairline);
        painter.setBrush(theme.cardBackground);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), frameRadius,
                                frameRadius);
    }
};

}  // namespace

QString workspaceLine(AppRoute route) {
    switch (route) {
        case AppRoute::optimize:
            return QStringLiteral(
                "Select one process or app group, review its impact, then choose a manual cleanup "
                "action. Nothing quits automatically.");
        case AppRoute::optimizationSuggestions:
            return QStringLiteral(
                "Start here for prioritized next steps across CPU, memory, and disk. Analyze "
                "first; review every proposed change.");
        case AppRoute::aiAdvisor:
            return QStringLiteral(
                "Use AI for explanations and trust-controlled reversible actions. Autonomy grows "
                "only from successful reviewed actions.");
        case AppRoute::chat:
            return QStringLiteral(
                "Ask a question about current diagnostics. Chat explains and points to controls "
                "but never executes actions.");
        default:
            return QStringLiteral("Choose an optimization workflow.");
    }
}

// One tab ----------------------------------------------------------------------------------------

WorkspaceTab::WorkspaceTab(AppRoute route, const QString& title, const QString& identifier,
                           QWidget* parent)
    : QAbstractButton(parent), route_(route) {
    installWorkspaceTabs();
    setObjectName(identifier);
    setText(title);
    setAccessibleName(title);
    setAccessibleDescription(workspaceLine(route));
    setCheckable(true);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize WorkspaceTab::sizeHint() const {
    // As wide as it is when selected, whether it is or not.
    return {figuresWidth(CrestFonts::current().heading, text()) + 2 * tabPadding, tabHeight};
}

void WorkspaceTab::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void WorkspaceTab::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

void WorkspaceTab::focusInEvent(QFocusEvent* event) {
    // The ring answers a person who moves by keyboard; on a click it would only be noise.
    hasKeyboardFocus_ = event->reason() == Qt::TabFocusReason ||
                        event->reason() == Qt::BacktabFocusReason ||
                        event->reason() == Qt::ShortcutFocusReason;
    QAbstractButton::focusInEvent(event);
}

void WorkspaceTab::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
            emit neighborWanted(-1);
            return;
        case Qt::Key_Right:
            emit neighborWanted(1);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            click();
            return;
        default:
            QAbstractButton::keyPressEvent(event);
    }
}

void WorkspaceTab::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isChecked() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isChecked() ? withOpacity(theme.accent, selectedOpacity)
                                     : withOpacity(theme.text, hoverOpacity));
        painter.drawRoundedRect(QRectF(rect()), tabRadius, tabRadius);
    }
    if (isChecked()) {
        // The selected step is told by shape as well as by colour.
        constexpr int barWidth = 16;
        constexpr int barHeight = 3;
        painter.setBrush(theme.accent);
        painter.drawRoundedRect(
            QRectF((width() - barWidth) / 2.0, height() - barHeight - 1, barWidth, barHeight),
            barHeight / 2.0, barHeight / 2.0);
    }
    if (hasFocus() && hasKeyboardFocus_) {
        painter.setPen(QPen(theme.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), tabRadius, tabRadius);
    }
    painter.setFont(isChecked() ? CrestFonts::current().heading : CrestFonts::current().body);
    painter.setPen(isChecked() ? theme.text : theme.secondaryText);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

// The bar ----------------------------------------------------------------------------------------

WorkspaceBar::WorkspaceBar(SystemMonitor& monitor, AppRoute route, QWidget* parent)
    : QWidget(parent), monitor_(monitor), route_(route) {
    installAccessibleFigures();
    setObjectName(QStringLiteral("optimize.workspace"));
    setAccessibleName(QStringLiteral("Optimize Workspace"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    auto* row = new FlowRow(spacing::pagePadding, this);
    row->addItem(new ElidedLabel(accessibleName(), &CrestFonts::heading, &CrestTheme::text));
    row->addItem(makeTabs());
    layout->addWidget(row);
    auto* line =
        new ElidedLabel(workspaceLine(route), &CrestFonts::body, &CrestTheme::secondaryText, this);
    line->setObjectName(QStringLiteral("optimize.workspace.line"));
    line->setLines(1, 3);
    layout->addWidget(line);
}

bool WorkspaceBar::isStep(AppRoute route) {
    return std::any_of(steps.begin(), steps.end(),
                       [route](const Step& step) { return step.route == route; });
}

QWidget* WorkspaceBar::makeTabs() {
    auto* frame = new TabFrame(this);
    frame->setAccessibleName(accessibleName());
    auto* layout = new QHBoxLayout(frame);
    layout->setContentsMargins(frameInset, frameInset, frameInset, frameInset);
    layout->setSpacing(frameInset);
    for (const Step& step : steps) {
        auto* tab = new WorkspaceTab(step.route, QString::fromLatin1(step.title),
                                     QString::fromLatin1(step.identifier), frame);
        connect(tab, &QAbstractButton::clicked, this,
                [this, tab] { choose(tab->route(), Qt::OtherFocusReason); });
        connect(tab, &WorkspaceTab::neighborWanted, this, &WorkspaceBar::chooseNeighbor);
        if (step.route == route_) {
            tab->setChecked(true);
            // Of one choice, Tab reaches what is chosen and the arrow keys the rest.
            tab->setFocusPolicy(Qt::StrongFocus);
        }
        layout->addWidget(tab);
        tabs_.push_back(tab);
    }
    return frame;
}

void WorkspaceBar::choose(AppRoute route, Qt::FocusReason reason) {
    if (route != route_) {
        handsOver_ = reason;
        monitor_.navigation().setSelectedRoute(route);
    }
}

void WorkspaceBar::chooseNeighbor(int places) {
    const auto selected = std::find_if(tabs_.begin(), tabs_.end(), [this](const WorkspaceTab* tab) {
        return tab->route() == route_;
    });
    const auto place = std::distance(tabs_.begin(), selected) + places;
    if (place >= 0 && place < std::ssize(tabs_)) {
        choose(tabs_.at(static_cast<std::size_t>(place))->route(), Qt::TabFocusReason);
    }
}

void WorkspaceBar::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (handsOver_) {
        // The page that takes this one's place is not there yet.
        QMetaObject::invokeMethod(this, &WorkspaceBar::handOver, Qt::QueuedConnection);
    }
}

void WorkspaceBar::handOver() {
    const auto reason = std::exchange(handsOver_, std::nullopt);
    for (WorkspaceBar* bar : window()->findChildren<WorkspaceBar*>()) {
        if (reason && bar->isVisible()) {
            bar->takeOver(*reason);
        }
    }
}

void WorkspaceBar::takeOver(Qt::FocusReason reason) {
    for (WorkspaceTab* tab : tabs_) {
        if (tab->isChecked()) {
            tab->setFocus(reason);
        }
    }
    for (QWidget* above = parentWidget(); above != nullptr; above = above->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(above)) {
            area->ensureWidgetVisible(this);
        }
    }
}

}  // namespace tallowcrest
