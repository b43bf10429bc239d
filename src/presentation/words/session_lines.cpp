#include "presentation/words/session_lines.h"

#include <algorithm>
#include <iterator>

#include <QStringList>

#include "core/activity_kinds.h"
#include "monitor/session_insights.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using dashboard_text::count;
using dashboard_text::text;

qsizetype countOf(const std::vector<ActivityEvent>& events, ActivityKind kind) {
    return std::ranges::count(events, kind, &ActivityEvent::kind);
}

QString valueOf(const std::vector<SessionInsight>& insights, SessionInsight::Kind kind) {
    const auto found = std::ranges::find(insights, kind, &SessionInsight::kind);
    return found == insights.end() ? u"None yet"_s : text(found->value);
}

QString neverQuitDetail(const ProtectedAppNames& names) {
    if (names.empty()) {
        return noProtectedApps();
    }
    QStringList listed;
    for (const std::string& name : names) {
        listed.append(text(name));
    }
    return listed.join(u", "_s);
}

SummaryTexts recurringTopApp(const QString& title, const std::vector<SessionInsight>& insights) {
    return {title, valueOf(insights, SessionInsight::Kind::topApp),
            u"Most visible app group in this Tallowcrest session."_s};
}

SummaryTexts remoteState(const std::vector<RemoteHealth>& remoteHealth, Date now) {
    const QString title = u"Remote State"_s;
    if (remoteHealth.empty()) {
        return {title, u"Not scanned"_s, u"Use Scan Remote Macs in the Tailscale section."_s};
    }
    // An absent figure is less than every other one.
    const std::optional<double> highest =
        std::ranges::max_element(remoteHealth, {}, &RemoteHealth::memoryPercent)->memoryPercent;
    return {title,
            count(std::ssize(remoteHealth) - machinesThatNeedAttention(remoteHealth)) +
                u" reachable · "_s + dashboard_text::age(oldestRemoteSample(remoteHealth), now),
            u"Highest remote memory pressure "_s +
                (highest ? dashboard_text::percentText(*highest) : dashboard_text::noFigure())};
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

QString noProtectedApps() {
    return u"No custom app groups are protected yet."_s;
}

std::vector<ActivityLine> activityLines(const std::vector<ActivityEvent>& events, std::size_t limit,
                                        Date now) {
    std::vector<ActivityLine> lines;
    lines.reserve(std::min(events.size(), limit));
    for (const ActivityEvent& event : events) {
        if (lines.size() == limit) {
            break;
        }
        lines.push_back({event.kind == ActivityKind::warning, text(event.title), text(event.detail),
                         dashboard_text::shortTimeText(event.date, now)});
    }
    return lines;
}

std::vector<SummaryTexts> sessionSummary(const std::vector<ActivityEvent>& activityLog,
                                         const std::vector<SessionInsight>& insights,
                                         const ProtectedAppNames& protectedAppNames) {
    return {
        {u"Events"_s, u"%1 warnings"_s.arg(count(countOf(activityLog, ActivityKind::warning))),
         u"%1 logged actions. Use Export for a full diagnostics file."_s.arg(
             count(countOf(activityLog, ActivityKind::action)))},
        recurringTopApp(u"Recurring Top App"_s, insights),
        {u"Remote Repeater"_s, valueOf(insights, SessionInsight::Kind::remoteRepeater),
         u"Most repeated top remote app group across SSH scans."_s},
        {u"Never Quit"_s, u"%1 apps"_s.arg(count(std::ssize(protectedAppNames))),
         neverQuitDetail(protectedAppNames)},
    };
}

std::vector<SummaryTexts> sessionInsightCards(const std::vector<SessionInsight>& insights,
                                              Date now) {
    if (insights.empty()) {
        return sessionInsightCards({startingInsight()}, now);
    }
    std::vector<SummaryTexts> cards;
    for (const SessionInsight& insight : insights) {
        QString detail = text(insight.detail);
        if (insight.sampledAt) {
            detail += u" Sampled %1."_s.arg(dashboard_text::age(*insight.sampledAt, now));
        }
        cards.push_back({text(insight.title), text(insight.value), detail});
    }
    return cards;
}

std::vector<SummaryTexts> sessionState(const std::optional<SystemSnapshot>& snapshot,
                                       const std::vector<SessionInsight>& insights,
                                       const std::vector<RemoteHealth>& remoteHealth, Date now) {
    return {remoteState(remoteHealth, now), currentState(snapshot),
            recurringTopApp(u"Top Repeater"_s, insights)};
}

Date oldestRemoteSample(const std::vector<RemoteHealth>& remoteHealth) {
    return std::ranges::min_element(remoteHealth, {}, &RemoteHealth::sampledAt)->sampledAt;
}

std::int64_t machinesThatNeedAttention(const std::vector<RemoteHealth>& remoteHealth) {
    return std::ranges::count_if(remoteHealth,
                                 [](const RemoteHealth& machine) { return !isReachable(machine); });
}

}  // namespace tallowcrest
