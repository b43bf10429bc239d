#include "presentation/screens/optimize/cleanup_page.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include "presentation/screens/optimize/cleanup_flow_card.h"
#include "presentation/screens/optimize/offender_card.h"
#include "presentation/screens/optimize/workspace_bar.h"
#include "presentation/screens/overview/disk_autopilot_block.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

CleanupPage::CleanupPage(SystemMonitor& monitor, QWidget* parent) : Screen(parent) {
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    layout->addWidget(new WorkspaceBar(monitor, AppRoute::optimize, content));
    flow_ = new CleanupFlowCard(monitor, content);
    layout->addWidget(flow_);
    disk_ = new DiskAutopilotBlock(monitor, u"cleanup"_s);
    layout->addWidget(disk_);
    offender_ = new OffenderCard(monitor, content);
    layout->addWidget(offender_);
    layout->addStretch(1);

    scrollOnPage(content, *this);
}

void CleanupPage::refresh() {
    flow_->refresh();
    disk_->refresh();
    offender_->refresh();
}

}  // namespace tallowcrest
