#include "presentation/screens/history/history_page.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/automation.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/settings/settings_owner.h"
#include "monitor/auto_rules.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/history/activity_log_card.h"
#include "presentation/screens/shared/automation_toggles.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/screens/shared/remote_timeline_card.h"
#include "presentation/screens/shared/timeline_graph.h"
#include "presentation/state/automation_facts.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/remote_timeline.h"
#include "presentation/words/session_lines.h"
#include "remote/remote.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString pointCount(std::size_t points) {
    return u"Last "_s + dashboard_text::count(static_cast<std::int64_t>(points));
}

}  // namespace

HistoryPage::HistoryPage(SystemMonitor& monitor, const WindowState& state, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state) {
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    layout->addWidget(makeTimeline());
    remoteTimeline_ = new RemoteTimelineCard(u"history.remote-timeline"_s);
    layout->addWidget(remoteTimeline_);
    session_.emplace(u"history.session"_s, sessionStateCards, content);
    layout->addWidget(session_->widget());
    layout->addWidget(makeAutomation());
    layout->addWidget(makeReceipts());
    log_ = new ActivityLogCard;
    connect(log_, &ActivityLogCard::clearWanted, this,
            [this] { monitor_.log().clearActivityLog(); });
    layout->addWidget(log_);
    layout->addStretch(1);

    area_ = scrollOnPage(content, *this);
}

QWidget* HistoryPage::makeTimeline() {
    timeline_ = new Card;
    timeline_->setObjectName(u"history.timeline"_s);
    timeline_->setHeader(u"waveform.path.ecg"_s, u"Local Timeline"_s);
    timeline_->reserveCaption(pointCount(LatestSample::maximumHistory));
    graph_ = makeTimelineGraph(u"history.timeline.graph"_s, timeline_);
    timeline_->contentLayout()->addWidget(graph_);
    return timeline_;
}

QWidget* HistoryPage::makeAutomation() {
    auto* card = new Card;
    card->setObjectName(u"history.automation"_s);
    card->setHeader(u"slider.horizontal.3"_s,
                    dashboard_text::text(title(DashboardSection::autoRules)));
    automation_ = new AutomationToggles(card->objectName());
    connectSwitches(*automation_, monitor_.actions().automation,
                    [this] { return automationFacts(monitor_); });
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
        onCard(&CrestFonts::body, &CrestTheme::secondaryText), card);
    words->setLines(1, 4);
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

std::vector<Observable*> HistoryPage::shows() const {
    return {&monitor_.sample().observable(),        &monitor_.log().observable(),
            &monitor_.settingsOwner().observable(), &monitor_.autoRules().observable(),
            &monitor_.remote().scan.observable(),   &monitor_.remote().profiles.observable()};
}

std::vector<HeaderAction> HistoryPage::headerActions() {
    return {{commands::copyReport, u"history.copy-report"_s,
             [this] { monitor_.reports().copyDiagnosticsReport(); }},
            {commands::exportReport, u"history.export"_s,
             [this] { monitor_.reports().exportDiagnosticsReport(); }}};
}

void HistoryPage::refresh() {
    area_->keepInPlace(topmostReadEntry());
    const LatestSample& sample = monitor_.sample();
    const std::vector<ActivityEvent>& activityLog = monitor_.log().activityLog();
    const std::vector<HistoryPoint>& history = sample.history();
    timeline_->setCaption(pointCount(history.size()));
    showTimeline(*graph_, {history, activityLog, monitor_.settings().warningThreshold},
                 timelineSummary(history));
    const Date now = monitor_.services().clock.now();
    const RemoteScan& scan = monitor_.remote().scan;
    remoteTimeline_->show(
        scan.remoteHistory(), now, monitor_.remote().profiles.remoteProfiles(),
        hostOfMachine(scan.state().remoteHealth, state_.navigation.selectedRemoteID()));
    session_->show(
        sessionState(sample.snapshot(), sample.sessionInsights(), scan.state().remoteHealth, now));
    automation_->show(automationFacts(monitor_));
    log_->show(activityLog, now);
}

QWidget* HistoryPage::topmostReadEntry() const {
    const std::vector<ActivityEntry*>& entries = log_->entries();
    if (entries.empty() || area_->placeInView(*entries.front()) >= 0) {
        return nullptr;
    }
    const auto first =
        std::find_if(entries.begin(), entries.end(), [this](const ActivityEntry* entry) {
            return area_->placeInView(*entry) + entry->height() > 0;
        });
    return first == entries.end() ? nullptr : *first;
}

}  // namespace tallowcrest
