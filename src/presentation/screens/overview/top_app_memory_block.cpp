#include "presentation/screens/overview/top_app_memory_block.h"

#include <algorithm>
#include <utility>

#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/overview/top_app_memory.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/words/dashboard_text.h"

namespace tallowcrest {
namespace {

/// One bar for each group that a sample can hold.
constexpr int barCount = maximumAppImpacts;
/// Enough for the words that stand in place of no bars.
constexpr int fewestBars = 3;

}  // namespace

TopAppMemoryBlock::TopAppMemoryBlock(SystemMonitor& monitor)
    : OverviewBlock(monitor, DashboardSection::appImpact, QStringLiteral("overview.top-app-memory"),
                    QStringLiteral("chart.bar.xaxis"), QStringLiteral("Top App Memory")) {
    bars_ = new BarList(QStringLiteral("Resident memory by app group"), barCount,
                        QStringLiteral("000.0 GB"), body());
    bars_->setEmptyText(QStringLiteral("Sampling apps…"));
    bodyLayout()->addWidget(bars_);
    fitBars();
    bodyLayout()->addStretch(1);
}

void TopAppMemoryBlock::showHeader() {
    const auto& snapshot = monitor().sample().snapshot();
    setSectionCaption(snapshot && !snapshot->appImpacts.empty()
                          ? QStringLiteral("Largest app groups by resident memory right now")
                          : QStringLiteral("Collecting app impact samples…"));
}

void TopAppMemoryBlock::showContent() {
    const auto& snapshot = monitor().sample().snapshot();
    std::vector<BarRow> rows;
    if (snapshot) {
        for (const AppMemoryBar& bar : topAppMemory(snapshot->appImpacts, barCount)) {
            rows.push_back({dashboard_text::text(bar.name),
                            dashboard_text::memoryText(bar.megabytes), bar.fraction});
        }
    }
    if (snapshot) {
        room_.setNeeded(static_cast<int>(rows.size()), snapshot->sampledAt);
    }
    bars_->setRows(std::move(rows));
    fitBars();
}

void TopAppMemoryBlock::fitBars() {
    const int shown = std::max({fewestBars, room_.rows(), static_cast<int>(bars_->rows().size())});
    const int height = bars_->sizeHint().height() / barCount * shown;
    if (bars_->minimumHeight() != height) {
        bars_->setFixedHeight(height);
    }
}

}  // namespace tallowcrest
