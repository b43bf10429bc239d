#include "presentation/overview_page.h"

#include <utility>

#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/bar_list.h"
#include "presentation/card.h"
#include "presentation/dashboard_text.h"
#include "presentation/elided_label.h"
#include "presentation/figure_row.h"
#include "presentation/gauge_card.h"
#include "presentation/gauge_row.h"
#include "presentation/page_scroll_area.h"
#include "presentation/stable_line_graph.h"
#include "presentation/summary_card.h"
#include "presentation/timeline.h"
#include "presentation/top_app_memory.h"

namespace tallowcrest {
namespace {

using dashboard_text::text;

/// One bar for each group that a sample can hold.
constexpr int topAppRows = maximumAppImpacts;

/// The colour that goes with a gauge's state word.
ThemeColor stateTint(double percent) {
    return percent >= 85.0   ? &CrestTheme::bad
           : percent >= 70.0 ? &CrestTheme::caution
                             : &CrestTheme::good;
}

}  // namespace

OverviewPage::OverviewPage(SystemMonitor& monitor, QWidget* parent)
    : Screen(parent), monitor_(monitor) {
    auto* content = new QWidget;
    auto* blocks = new QVBoxLayout(content);
    // The scroll bar stands within the page's own padding.
    blocks->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding - spacing::scrollBar,
                               spacing::pagePadding);
    blocks->setSpacing(spacing::gap);
    blocks->addWidget(makeGauges());
    blocks->addWidget(makeTimeline(), 1);
    blocks->addWidget(makeTopAppMemory());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makePageScrollArea(content, this));
}

QWidget* OverviewPage::makeGauges() {
    // Enough for the largest figure and three lines of detail.
    constexpr int narrowestMetric = 160;
    auto* gauges = new GaugeRow(this);
    gauges->setObjectName(QStringLiteral("overview.gauges"));
    gauges->setAccessibleName(text(title(DashboardSection::gauges)));
    cpuGauge_ = new GaugeCard(QStringLiteral("CPU Load"), &CrestTheme::good, gauges);
    memoryGauge_ = new GaugeCard(QStringLiteral("Memory Pressure"), &CrestTheme::good, gauges);
    reclaimable_ = new MetricCard(QStringLiteral("Free / Reclaimable"), gauges);
    cpuGauge_->setObjectName(QStringLiteral("overview.cpu-load"));
    memoryGauge_->setObjectName(QStringLiteral("overview.memory-pressure"));
    reclaimable_->setObjectName(QStringLiteral("overview.free-reclaimable"));
    gauges->setCards({cpuGauge_, memoryGauge_, reclaimable_}, narrowestMetric);
    return gauges;
}

QWidget* OverviewPage::makeTimeline() {
    auto* card = new Card(this);
    card->setObjectName(QStringLiteral("overview.timeline"));
    card->setHeader(QStringLiteral("waveform.path.ecg"),
                    QStringLiteral("Live Performance Timeline"));
    timeline_ = card;
    card->reserveCaption(dashboard_text::timelineCaption(longestSessionSeconds));
    graph_ = new StableLineGraph(card);
    graph_->setMinimumHeight(18 * spacing::unit);
    card->contentLayout()->addWidget(graph_, 1);
    figures_ = new FigureRow({QStringLiteral("CPU now"), QStringLiteral("Memory now"),
                              QStringLiteral("CPU peak"), QStringLiteral("Memory peak")},
                             card);
    averages_ = new ElidedLabel(QString(), &CrestFonts::caption, &CrestTheme::secondaryText, card);
    averages_->setGround(&CrestTheme::cardBackground);
    averages_->setAlignment(Qt::AlignRight | Qt::AlignBottom);
    auto* below = new QHBoxLayout;
    below->setSpacing(spacing::gap);
    below->addWidget(figures_, 4);
    below->addWidget(averages_, 2, Qt::AlignBottom);
    card->contentLayout()->addLayout(below);
    return card;
}

QWidget* OverviewPage::makeTopAppMemory() {
    auto* card = new Card(this);
    card->setObjectName(QStringLiteral("overview.top-app-memory"));
    card->setHeader(QStringLiteral("chart.bar.xaxis"), QStringLiteral("Top App Memory"));
    card->setCaption(QStringLiteral("Largest app groups by resident memory right now"));
    topAppsCard_ = card;
    topApps_ = new BarList(QStringLiteral("Resident memory by app group"), topAppRows,
                           QStringLiteral("000.0 GB"), card);
    topApps_->setEmptyText(QStringLiteral("Sampling apps…"));
    card->contentLayout()->addWidget(topApps_);
    return card;
}

void OverviewPage::refresh() {
    showGauges();
    showTimeline();
    showTopAppMemory();
}

void OverviewPage::showGauges() {
    const auto& snapshot = monitor_.sample().snapshot();
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
    cpuGauge_->setTint(stateTint(snapshot->cpuPercent));
    cpuGauge_->setDetail(dashboard_text::cpuDetail(snapshot->cpuPercent));
    memoryGauge_->setValue(memory.pressure);
    memoryGauge_->setTint(stateTint(memory.pressure));
    memoryGauge_->setDetail(dashboard_text::memoryDetail(memory));
    reclaimable_->setValue(QStringLiteral("%1 GB").arg(dashboard_text::gigabytes(memory.freeGB)));
    reclaimable_->setDetail(dashboard_text::reclaimableDetail(memory));
}

void OverviewPage::showTimeline() {
    using dashboard_text::percentText;
    const auto& history = monitor_.sample().history();
    const double threshold = monitor_.settings().warningThreshold;
    TimelineSummary summary = timelineSummary(history);
    timeline_->setCaption(dashboard_text::timelineCaption(sessionSeconds(history)));
    const Date now = history.empty() ? Date{} : history.back().date;
    graph_->setEventFractions(eventFractions(monitor_.log().activityLog(), history, now));
    graph_->setWarningThreshold(threshold);
    if (monitor_.sample().snapshot()) {
        figures_->setFigures({percentText(summary.cpuNow), percentText(summary.memoryNow),
                              percentText(summary.cpuPeak), percentText(summary.memoryPeak)});
        averages_->setText(dashboard_text::averageAndThreshold(summary.cpuAverage, threshold));
    } else {
        // A history that an earlier run left says nothing of now.
        const QString none = dashboard_text::noFigure();
        figures_->setFigures({none, none, none, none});
        averages_->setText(QString());
    }
    graph_->setSeries(
        {{QStringLiteral("CPU"), &CrestTheme::accent, std::move(summary.cpu), true},
         {QStringLiteral("Memory"), &CrestTheme::secondSeries, std::move(summary.memory), false}});
}

void OverviewPage::showTopAppMemory() {
    const auto& snapshot = monitor_.sample().snapshot();
    const std::vector<AppMemoryBar> bars =
        snapshot ? topAppMemory(snapshot->appImpacts, topAppRows) : std::vector<AppMemoryBar>{};
    topAppsCard_->setCaption(
        bars.empty() ? QStringLiteral("Collecting app impact samples…")
                     : QStringLiteral("Largest app groups by resident memory right now"));
    std::vector<BarRow> rows;
    rows.reserve(bars.size());
    for (const AppMemoryBar& bar : bars) {
        rows.push_back({text(bar.name), dashboard_text::memoryText(bar.megabytes), bar.fraction});
    }
    topApps_->setRows(std::move(rows));
}

}  // namespace tallowcrest
