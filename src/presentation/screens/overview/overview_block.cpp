#include "presentation/screens/overview/overview_block.h"

#include "monitor/system_monitor.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

OverviewBlock::OverviewBlock(SystemMonitor& monitor, DashboardSection section,
                             const QString& identifier, const QString& icon, const QString& title,
                             Frame frame)
    : SectionCard(icon, title, frame), monitor_(monitor), section_(section) {
    setObjectName(identifier);
    header()->setObjectName(u"section."_s + dashboard_text::text(rawValue(section)));
    connect(header(), &SectionHeader::collapseWanted, this,
            [this](bool collapsed) { monitor_.sections().setCollapsed(section_, collapsed); });
}

void OverviewBlock::refresh() {
    setCollapsed(monitor_.sections().isCollapsed(section_));
    showHeader();
    if (!isCollapsed()) {
        showContent();
    }
}

}  // namespace tallowcrest
