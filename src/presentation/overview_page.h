#pragma once

#include "presentation/screen.h"

namespace tallowcrest {

class BarList;
class Card;
class ElidedLabel;
class FigureRow;
class GaugeCard;
class MetricCard;
class StableLineGraph;
class SystemMonitor;

/// Health at a glance: gauges, the live timeline and the largest application groups. Main thread.
class OverviewPage final : public Screen {
    Q_OBJECT

public:
    explicit OverviewPage(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;

private:
    QWidget* makeGauges();
    QWidget* makeTimeline();
    QWidget* makeTopAppMemory();
    void showGauges();
    void showTimeline();
    void showTopAppMemory();

    SystemMonitor& monitor_;
    GaugeCard* cpuGauge_ = nullptr;
    GaugeCard* memoryGauge_ = nullptr;
    MetricCard* reclaimable_ = nullptr;
    Card* timeline_ = nullptr;
    StableLineGraph* graph_ = nullptr;
    FigureRow* figures_ = nullptr;
    ElidedLabel* averages_ = nullptr;
    Card* topAppsCard_ = nullptr;
    BarList* topApps_ = nullptr;
};

}  // namespace tallowcrest
