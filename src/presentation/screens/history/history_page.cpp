#include "presentation/screens/history/history_page.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/automation/automation_toggles.h"
#include "presentation/screens/history/activity_entry.h"
#include "presentation/screens/history/activity_log_card.h"
#include "presentation/screens/timeline_graph.h"
#include "presentation/widgets/controls.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/pending_layouts.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/commands.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/session_summary.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr std::size_t sessionCards = 3;

QString pointCount(std::size_t count) {
    return u"Last %1"_s.arg(count);
}

SummaryTexts currentState(const std::optional<SystemSnapshot>& snapshot) {
    const QString title = u"Current State"_s;
    if (!snapshot) {
        return {title, dashboard_text::noFigure(), u"Sampling this Mac..."_s};
    }
    return {
        title, dashboard_text::percentText(snapshot->cpuPercent) + u" CPU"_s,
        u"Memory pressure %1 at %2"_s.arg(dashboard_text::percentText(snapshot->memory.pressure),
                                          dashboard_text::timeText(snapshot->sampledAt))};
}

}  // namespace

HistoryPage::HistoryPage(SystemMonitor& monitor, QWidget* parent)
    : Screen(parent), monitor_(monitor) {
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    layout->addWidget(makeTimeline());
    session_.emplace(u"history.session"_s, sessionCards, content);
    layout->addWidget(session_->widget());
    layout->addWidget(makeAutomation());
    layout->addWidget(makeReceipts());
    log_ = new ActivityLogCard(monitor_);
    layout->addWidget(log_);
    layout->addStretch(1);

    area_ = scrollOnPage(content, *this);
}

QWidget* HistoryPage::makeTimeline() {
    timeline_ = new Card;
    timeline_->setObjectName(u"history.timeline"_s);
    timeline_->setHeader(u"waveform.path.ecg"_s, u"Local Timeline"_s);
    timeline_->reserveCaption(pointCount(LatestSample::maximumHistory));
    graph_ = new StableLineGraph(timeline_);
    graph_->setMinimumHeight(18 * spacing::unit);
    timeline_->contentLayout()->addWidget(graph_);
    return timeline_;
}

QWidget* HistoryPage::makeAutomation() {
    auto* card = new Card;
    card->setObjectName(u"history.automation"_s);
    card->setHeader(u"slider.horizontal.3"_s,
                    dashboard_text::text(title(DashboardSection::autoRules)));
    automation_ = new AutomationToggles(monitor_, card->objectName());
    card->contentLayout()->addWidget(automation_);
    return card;
}

QWidget* HistoryPage::makeReceipts() {
    auto* card = new Card;
    card->setObjectName(u"history.receipts"_s);
    card->setHeader(u"doc.text.magnifyingglass"_s, u"Exportable Receipts"_s);
    auto* words = new ElidedLabel(
        u"Diagnostics exports include local load, remote health, AI recommendations, "
        "action settings, and recent activity without exposing your OpenAI key."_s,
        &CrestFonts::body, &CrestTheme::secondaryText, card);
    words->setLines(1, 4);
    words->setGround(&CrestTheme::cardBackground);
    card->contentLayout()->addWidget(words);
    auto* copy = makeButton(commands::copyReport, u"history.receipts.copy-report"_s, card);
    auto* write = makeButton(commands::exportReport, u"history.receipts.export"_s, card);
    connect(copy, &QPushButton::clicked, this,
            [this] { monitor_.reports().copyDiagnosticsReport(); });
    connect(write, &QPushButton::clicked, this,
            [this] { monitor_.reports().exportDiagnosticsReport(); });
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::unit);
    buttons->addWidget(copy);
    buttons->addWidget(write);
    buttons->addStretch(1);
    card->contentLayout()->addLayout(buttons);
    return card;
}

void HistoryPage::refresh() {
    const std::optional<ReadingPlace> place = readingPlace();
    refreshAll();
    if (place) {
        keepReadingPlace(*place);
    }
}

void HistoryPage::refreshAll() {
    const auto& history = monitor_.sample().history();
    timeline_->setCaption(pointCount(history.size()));
    showTimeline(*graph_, monitor_, timelineSummary(history));
    showSession();
    automation_->refresh();
    log_->refresh();
}

void HistoryPage::showSession() {
    session_->show(
        // Nothing scans other machines yet, and so nothing is said of how to.
        {{u"Remote State"_s, u"Not scanned"_s, QString()},
         currentState(monitor_.sample().snapshot()),
         recurringTopApp(u"Top Repeater"_s, monitor_.sample().sessionInsights())});
}

int HistoryPage::placeInView(const QWidget& widget) const {
    return widget.mapTo(area_->viewport(), QPoint()).y();
}

std::optional<HistoryPage::ReadingPlace> HistoryPage::readingPlace() const {
    const std::vector<ActivityEntry*>& entries = log_->entries();
    if (entries.empty() || placeInView(*entries.front()) >= 0) {
        return std::nullopt;
    }
    const auto first = std::find_if(
        entries.begin(), entries.end(),
        [this](const ActivityEntry* entry) { return placeInView(*entry) + entry->height() > 0; });
    return first == entries.end() ? std::nullopt
                                  : std::optional(ReadingPlace{*first, placeInView(**first)});
}

void HistoryPage::keepReadingPlace(const ReadingPlace& place) {
    const std::vector<ActivityEntry*>& entries = log_->entries();
    if (std::find(entries.begin(), entries.end(), place.entry) == entries.end()) {
        return;
    }
    arrangePendingLayouts();
    QScrollBar* bar = area_->verticalScrollBar();
    bar->setValue(bar->value() + placeInView(*place.entry) - place.y);
}

}  // namespace tallowcrest
