#include "presentation/screens/overview/gauges_block.h"

#include <initializer_list>

#include <QVBoxLayout>

#include "presentation/widgets/gauge_card.h"
#include "presentation/widgets/gauge_row.h"
#include "presentation/widgets/graph_geometry.h"
#include "presentation/widgets/summary_card.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/binary_units.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

using dashboard_text::text;

namespace {

void showPercent(GaugeCard& gauge, double percent, const QString& detail) {
    const double shown = safeGraphValue(percent);
    gauge.setValue(shown, dashboard_text::percentText(shown), detail);
}

}  // namespace

GaugesBlock::GaugesBlock()
    : OverviewBlock(DashboardSection::gauges, u"overview.system-gauges"_s, u"speedometer"_s,
                    text(title(DashboardSection::gauges))) {
    // Wide enough for the largest figure and for the detail in three lines.
    constexpr int narrowestMetric = 128;
    auto* gauges = new GaugeRow(body());
    gauges->setObjectName(u"overview.gauges"_s);
    // The section around it already has the title as its name.
    gauges->setAccessibleName(u"CPU, memory and free memory"_s);
    cpuGauge_ = new GaugeCard(u"CPU Load"_s, gauges);
    memoryGauge_ = new GaugeCard(u"Memory Pressure"_s, gauges);
    reclaimable_ = new MetricCard(u"Free / Reclaimable"_s, gauges);
    reclaimable_->centerLines();
    cpuGauge_->setObjectName(u"overview.cpu-load"_s);
    memoryGauge_->setObjectName(u"overview.memory-pressure"_s);
    reclaimable_->setObjectName(u"overview.free-reclaimable"_s);
    for (Card* card : std::initializer_list<Card*>{cpuGauge_, memoryGauge_, reclaimable_}) {
        card->setFrameless();
    }
    gauges->setCards({cpuGauge_, memoryGauge_, reclaimable_}, narrowestMetric);
    bodyLayout()->addWidget(gauges);
}

void GaugesBlock::show(const std::optional<SystemSnapshot>& snapshot) {
    if (isCollapsed()) {
        return;
    }
    if (!snapshot) {
        const QString waiting = u"Sampling this Mac..."_s;
        cpuGauge_->clearValue(waiting);
        memoryGauge_->clearValue(waiting);
        reclaimable_->setValue(dashboard_text::noFigure());
        reclaimable_->setDetail(waiting);
        return;
    }
    const MemorySnapshot& memory = snapshot->memory;
    showPercent(*cpuGauge_, snapshot->cpuPercent, dashboard_text::cpuDetail(snapshot->cpuPercent));
    showPercent(*memoryGauge_, memory.pressure, dashboard_text::memoryDetail(memory));
    reclaimable_->setValue(dashboard_text::memoryText(memory.freeGB * megabytesPerGigabyte));
    reclaimable_->setDetail(dashboard_text::reclaimableDetail(memory));
}

}  // namespace tallowcrest
