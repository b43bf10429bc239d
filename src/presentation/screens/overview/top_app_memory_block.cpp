#include "presentation/screens/overview/top_app_memory_block.h"

#include <algorithm>
#include <utility>

#include <QVBoxLayout>

#include "presentation/widgets/bar_list.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/app_impact.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// One bar for each group that a sample can hold.
constexpr int barCount = maximumAppImpacts;
/// Room for the text that is shown when there are no bars.
constexpr int fewestBars = 3;

}  // namespace

TopAppMemoryBlock::TopAppMemoryBlock()
    : OverviewBlock(DashboardSection::appImpact, u"overview.top-app-memory"_s, u"chart.bar.xaxis"_s,
                    u"Top App Memory"_s) {
    bars_ = new BarList(u"Resident memory by app group"_s, barCount, u"000.0 GB"_s, body());
    bars_->setEmptyText(u"Sampling apps…"_s);
    bodyLayout()->addWidget(bars_);
    fitBars();
    bodyLayout()->addStretch(1);
}

void TopAppMemoryBlock::show(const std::optional<SystemSnapshot>& snapshot) {
    setSectionCaption(snapshot && !snapshot->appImpacts.empty()
                          ? u"Largest app groups by resident memory right now"_s
                          : u"Collecting app impact samples…"_s);
    if (isCollapsed()) {
        return;
    }
    std::vector<BarRow> rows;
    if (snapshot) {
        for (const AppMemoryBar& bar : topAppMemory(snapshot->appImpacts, barCount)) {
            rows.push_back({dashboard_text::text(bar.name),
                            dashboard_text::memoryText(bar.megabytes), bar.fraction});
        }
        room_.setNeeded(static_cast<int>(rows.size()), snapshot->sampledAt.secondsSinceReference);
    }
    bars_->setRows(std::move(rows));
    fitBars();
}

void TopAppMemoryBlock::fitBars() {
    const int shown = std::max({fewestBars, room_.count(), static_cast<int>(bars_->rows().size())});
    const int height = bars_->sizeHint().height() / barCount * shown;
    if (bars_->minimumHeight() != height) {
        bars_->setFixedHeight(height);
    }
}

}  // namespace tallowcrest
