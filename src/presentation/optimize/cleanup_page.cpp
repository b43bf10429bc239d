#include "presentation/optimize/cleanup_page.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include "presentation/optimize/cleanup_flow_card.h"
#include "presentation/optimize/offender_card.h"
#include "presentation/optimize/workspace_bar.h"
#include "presentation/page_scroll_area.h"
#include "presentation/theme.h"

namespace tallowcrest {

CleanupPage::CleanupPage(SystemMonitor& monitor, QWidget* parent) : Screen(parent) {
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    // The scroll bar stands within the page's own padding.
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding - spacing::scrollBar,
                               spacing::pagePadding);
    layout->setSpacing(spacing::gap);
    layout->addWidget(new WorkspaceBar(monitor, AppRoute::optimize, content));
    flow_ = new CleanupFlowCard(monitor, content);
    layout->addWidget(flow_);
    offender_ = new OffenderCard(monitor, content);
    layout->addWidget(offender_);
    layout->addStretch(1);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->addWidget(makePageScrollArea(content, this));
}

void CleanupPage::refresh() {
    flow_->refresh();
    offender_->refresh();
}

}  // namespace tallowcrest
