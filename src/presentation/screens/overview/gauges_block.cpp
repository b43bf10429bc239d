#include "presentation/screens/overview/gauges_block.h"

#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/widgets/gauge_card.h"
#include "presentation/widgets/gauge_row.h"
#include "presentation/widgets/summary_card.h"
#include "presentation/words/dashboard_text.h"

namespace tallowcrest {

using dashboard_text::text;

GaugesBlock::GaugesBlock(SystemMonitor& monitor)
    : OverviewBlock(monitor, DashboardSection::gauges, QStringLiteral("overview.system-gauges"),
                    QStringLiteral("speedometer"), text(title(DashboardSection::gauges)),
                    Frame::none) {
    // Enough for the largest figure and three lines of detail.
    constexpr int narrowestMetric = 160;
    auto* gauges = new GaugeRow(body());
    gauges->setObjectName(QStringLiteral("overview.gauges"));
    // The section around it bears the section's name.
    gauges->setAccessibleName(QStringLiteral("CPU, memory and free memory"));
    cpuGauge_ = new GaugeCard(QStringLiteral("CPU Load"), &CrestTheme::good, gauges);
    memoryGauge_ = new GaugeCard(QStringLiteral("Memory Pressure"), &CrestTheme::good, gauges);
    reclaimable_ = new MetricCard(QStringLiteral("Free / Reclaimable"), gauges);
    reclaimable_->centerLines();
    cpuGauge_->setObjectName(QStringLiteral("overview.cpu-load"));
    memoryGauge_->setObjectName(QStringLiteral("overview.memory-pressure"));
    reclaimable_->setObjectName(QStringLiteral("overview.free-reclaimable"));
    gauges->setCards({cpuGauge_, memoryGauge_, reclaimable_}, narrowestMetric);
    bodyLayout()->addWidget(gauges);
}

void GaugesBlock::showContent() {
    const auto& snapshot = monitor().sample().snapshot();
    if (!snapshot) {
        const QString waiting = QStringLiteral("Sampling this Mac...");
        cpuGauge_->clearValue();
        memoryGauge_->clearValue();
        reclaimable_->setValue(dashboard_text::noFigure());
        cpuGauge_->setDetail(waiting);
        memoryGauge_->setDetail(waiting);
        reclaimable_->setDetail(waiting);
        return;
    }
    const MemorySnapshot& memory = snapshot->memory;
    cpuGauge_->setValue(snapshot->cpuPercent);
    cpuGauge_->setTint(gaugeStateColor(snapshot->cpuPercent));
    cpuGauge_->setDetail(dashboard_text::cpuDetail(snapshot->cpuPercent));
    memoryGauge_->setValue(memory.pressure);
    memoryGauge_->setTint(gaugeStateColor(memory.pressure));
    memoryGauge_->setDetail(dashboard_text::memoryDetail(memory));
    reclaimable_->setValue(QStringLiteral("%1 GB").arg(dashboard_text::gigabytes(memory.freeGB)));
    reclaimable_->setDetail(dashboard_text::reclaimableDetail(memory));
}

}  // namespace tallowcrest
