#include "presentation/words/session_summary.h"

#include <algorithm>

#include <QStringList>

#include "presentation/words/dashboard_text.h"

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
    return found == insights.end() ? QStringLiteral("None yet") : text(found->value);
}

QString neverQuitDetail(const ProtectedAppNames& names) {
    if (names.empty()) {
        return QStringLiteral("No custom app groups are protected yet.");
    }
    QStringList listed;
    for (const std::string& name : names) {
        listed.append(text(name));
    }
    return listed.join(QStringLiteral(", "));
}

}  // namespace

SummaryTexts recurringTopApp(const QString& title, const std::vector<SessionInsight>& insights) {
    return {title, valueOf(insights, "Recurring Top App"),
            QStringLiteral("Most visible app group in this Tallowcrest session.")};
}

std::vector<SummaryTexts> sessionSummary(const std::vector<ActivityEvent>& activityLog,
                                         const std::vector<SessionInsight>& insights,
                                         const ProtectedAppNames& protectedAppNames) {
    return {
        {QStringLiteral("Events"),
         QStringLiteral("%1 warnings").arg(countOf(activityLog, "Warning")),
         QStringLiteral("%1 logged actions. Use Export for a full diagnostics file.")
             .arg(countOf(activityLog, "Action"))},
        recurringTopApp(QStringLiteral("Recurring Top App"), insights),
        {QStringLiteral("Remote Repeater"), valueOf(insights, "Remote Repeater"),
         QStringLiteral("Most repeated top remote app group across SSH scans.")},
        {QStringLiteral("Never Quit"), QStringLiteral("%1 apps").arg(protectedAppNames.size()),
         neverQuitDetail(protectedAppNames)},
    };
}

}  // namespace tallowcrest
