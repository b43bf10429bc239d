#include "presentation/screens/shared/workspace_bar.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QScrollArea>
#include <QVBoxLayout>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/tab_strip.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

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

}  // namespace

QString workspaceLine(AppRoute route) {
    switch (route) {
        case AppRoute::optimize:
            return u"Select one process or app group, review its impact, then choose a manual "
                   u"cleanup "
                   "action. Nothing quits automatically."_s;
        case AppRoute::optimizationSuggestions:
            return u"Start here for prioritized next steps across CPU, memory, and disk. Analyze "
                   "first; review every proposed change."_s;
        case AppRoute::aiAdvisor:
            return u"Use AI for explanations and trust-controlled reversible actions. Autonomy "
                   u"grows "
                   "only from successful reviewed actions."_s;
        case AppRoute::chat:
            return u"Ask a question about current diagnostics. Chat explains and points to "
                   u"controls "
                   "but never executes actions."_s;
        default:
            return u"Choose an optimization workflow."_s;
    }
}

WorkspaceBar::WorkspaceBar(AppRoute route, QWidget* parent) : QWidget(parent), route_(route) {
    installAccessibleFigures();
    setObjectName(u"optimize.workspace"_s);
    setAccessibleName(u"Optimize Workspace"_s);
    makeTabs();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    auto* row = new FlowRow(spacing::pagePadding, this);
    row->addItem(new ElidedLabel(accessibleName(), onPage(&CrestFonts::heading)));
    row->addItem(tabs_);
    layout->addWidget(row);
    auto* line = new ElidedLabel(workspaceLine(route),
                                 onPage(&CrestFonts::body, &CrestTheme::secondaryText), this);
    line->setObjectName(u"optimize.workspace.line"_s);
    line->setLines(1, 3);
    layout->addWidget(line);
}

void WorkspaceBar::makeTabs() {
    tabs_ = new TabStrip(accessibleName());
    for (const Step& step : steps) {
        const int index =
            tabs_->addTab(QString::fromLatin1(step.title), QString::fromLatin1(step.identifier),
                          workspaceLine(step.route));
        if (step.route == route_) {
            tabs_->setCurrentIndex(index);
        }
    }
    connect(tabs_, &TabStrip::chosen, this, [this](int index, Qt::FocusReason reason) {
        focusToPass_ = reason;
        emit routeWanted(steps.at(static_cast<std::size_t>(index)).route);
    });
}

void WorkspaceBar::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (focusToPass_) {
        // The page that replaces this one is not visible yet.
        QMetaObject::invokeMethod(this, &WorkspaceBar::passFocus, Qt::QueuedConnection);
    }
}

void WorkspaceBar::passFocus() {
    const auto reason = std::exchange(focusToPass_, std::nullopt);
    for (WorkspaceBar* bar : window()->findChildren<WorkspaceBar*>()) {
        if (reason && bar->isVisible()) {
            bar->takeFocus(*reason);
        }
    }
}

void WorkspaceBar::takeFocus(Qt::FocusReason reason) {
    // Qt may have focused it already when the pages changed, but for another reason.
    tabs_->focusProxy()->clearFocus();
    tabs_->setFocus(reason);
    for (QWidget* above = parentWidget(); above != nullptr; above = above->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(above)) {
            area->ensureWidgetVisible(this);
        }
    }
}

}  // namespace tallowcrest
