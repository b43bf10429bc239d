#include "presentation/words/recommendation_lines.h"

#include <algorithm>
#include <iterator>

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

namespace {

using dashboard_text::text;
using Severity = Recommendation::Severity;

}  // namespace

std::vector<RecommendationLine> recommendationLines(
    const std::vector<Recommendation>& recommendations,
    const std::vector<ProcessSample>& latestProcesses) {
    std::vector<RecommendationLine> lines;
    lines.reserve(recommendations.size());
    for (const Recommendation& each : recommendations) {
        lines.push_back(
            {each.severity, text(each.title), text(each.detail),
             each.relatedPID && findProcess(latestProcesses, *each.relatedPID) != nullptr
                 ? each.relatedPID
                 : std::nullopt});
    }
    std::stable_sort(lines.begin(), lines.end(), [](const auto& left, const auto& right) {
        return left.severity > right.severity;
    });
    return lines;
}

QString recommendationNote(const std::vector<RecommendationLine>& lines) {
    if (lines.empty()) {
        return {};
    }
    const QString first = severityWord(lines.front().severity) + u" · "_s + lines.front().title;
    return lines.size() == 1
               ? first
               : first + u" · %1 more"_s.arg(dashboard_text::count(std::ssize(lines) - 1));
}

QString severityWord(Severity severity) {
    return text(title(severity));
}

QString severityIcon(Severity severity) {
    switch (severity) {
        case Severity::info:
            return u"checkmark.circle"_s;
        case Severity::caution:
            return u"exclamationmark.triangle"_s;
        case Severity::urgent:
            return u"exclamationmark.triangle.fill"_s;
    }
    return {};
}

}  // namespace tallowcrest
