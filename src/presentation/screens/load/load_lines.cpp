#include "presentation/screens/load/load_lines.h"

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

LoadLines loadLines(const LoadFacts& facts) {
    LoadLines lines;
    if (!facts.sampledAt) {
        lines.status = lines.emptyDetail = u"Sampling this Mac..."_s;
    } else {
        lines.status = dashboard_text::sortStatus(facts.shownRows, *facts.sampledAt);
        lines.emptyDetail = facts.hasProcesses
                                ? u"No process matches the filter. Clear it to see all."_s
                                : u"No process could be read in the last sample."_s;
    }
    lines.description = facts.shownRows == 0
                            ? u"Select Process. "_s + lines.emptyDetail
                            : u"Processes by impact. Return on a row selects it for review."_s;
    return lines;
}

}  // namespace tallowcrest
