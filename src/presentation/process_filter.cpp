#include "presentation/process_filter.h"

#include <string>

#include "presentation/dashboard_text.h"

namespace tallowcrest {
namespace {

bool matches(const ProcessSample& row, const QString& needle) {
    using dashboard_text::text;
    return text(row.displayName()).toLower().contains(needle) ||
           text(row.command).toLower().contains(needle) ||
           QString::number(row.pid).contains(needle);
}

}  // namespace

std::vector<ProcessSample> filteredProcesses(const std::vector<ProcessSample>& rows,
                                             const QString& filter) {
    const QString needle = filter.trimmed().toLower();
    if (needle.isEmpty()) {
        return rows;
    }
    std::vector<ProcessSample> kept;
    for (const ProcessSample& row : rows) {
        if (matches(row, needle)) {
            kept.push_back(row);
        }
    }
    return kept;
}

}  // namespace tallowcrest
