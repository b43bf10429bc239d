#include "presentation/words/session_summary.h"

#include <algorithm>

#include <QStringList>

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using dashboard_text::text;

qsizetype countOf(const std::vector<ActivityEvent>& events, std::string_view title) {
    return std::count_if(events.begin(), events.end(),
                         [title](const ActivityEvent& event) { return event.title == title; });
}

QString valueOf(const std::vector<SessionInsight>& insights, std::string_view title) {
    const auto found =
        std::find_if(insights.begin(), insights.end(),
                     [title](const SessionInsight& insight) { return insight.title == title; });
    return found == insights.end() ? u"None yet"_s : text(found->value);
}

QString neverQuitDetail(const ProtectedAppNames& names) {
    if (names.empty()) {
        return u"No custom app groups are protected yet."_s;
    }
    QStringList listed;
    for (const std::string& name : names) {
        listed.append(text(name));
    }
    return listed.join(u", "_s);
}

}  // namespace

SummaryTexts recurringTopApp(const QString& title, const std::vector<SessionInsight>& insights) {
    return {title, valueOf(insights, "Recurring Top App"),
            u"Most visible app group in this Tallowcrest session."_s};
}

std::vector<SummaryTexts> sessionSummary(const std::vector<ActivityEvent>& activityLog,
                                         const std::vector<SessionInsight>& insights,
                                         const ProtectedAppNames& protectedAppNames) {
    return {
        {u"Events"_s, u"%1 warnings"_s.arg(countOf(activityLog, "Warning")),
         u"%1 logged actions. Use Export for a full diagnostics file."_s.arg(
             countOf(activityLog, "Action"))},
        recurringTopApp(u"Recurring Top App"_s, insights),
        {u"Remote Repeater"_s, valueOf(insights, "Remote Repeater"),
         u"Most repeated top remote app group across SSH scans."_s},
        {u"Never Quit"_s, u"%1 apps"_s.arg(protectedAppNames.size()),
         neverQuitDetail(protectedAppNames)},
    };
}

}  // namespace tallowcrest
