#include "presentation/words/process_filter.h"

#include "presentation/words/dashboard_text.h"

namespace tallowcrest {
namespace {

bool matches(const ProcessSample& row, const QString& needle) {
    using dashboard_text::text;
    return text(row.displayName()).toLower().contains(needle) ||
           text(row.command).toLower().contains(needle) ||
           QString::number(row.pid).contains(needle);
}

}  // namespace

std::vector<ProcessSample> filteredProcesses(std::vector<ProcessSample> rows,
                                             const QString& filter) {
    const QString needle = filter.trimmed().toLower();
    if (!needle.isEmpty()) {
        std::erase_if(rows, [&needle](const ProcessSample& row) { return !matches(row, needle); });
    }
    return rows;
}

}  // namespace tallowcrest
