#include "presentation/words/process_filter.h"

#include <string_view>

#include "presentation/words/dashboard_text.h"

namespace tallowcrest {
namespace {

using dashboard_text::text;

bool contains(std::string_view field, const QString& needle) {
    return text(field).toLower().contains(needle);
}

bool matches(const ProcessSample& row, const ProcessDetail* detail, const QString& needle) {
    return contains(row.displayName(), needle) || contains(row.command, needle) ||
           QString::number(row.pid).contains(needle) ||
           (detail != nullptr &&
            (contains(detail->owner, needle) || contains(detail->argument, needle) ||
             contains(detail->commandLine, needle) || contains(detail->shortName, needle)));
}

}  // namespace

bool isBlankFilter(const QString& filter) {
    return filter.trimmed().isEmpty();
}

std::vector<ProcessSample> filteredProcesses(std::vector<ProcessSample> rows, const QString& filter,
                                             const DetailOf& detailOf) {
    if (!isBlankFilter(filter)) {
        const QString needle = filter.trimmed().toLower();
        std::erase_if(rows, [&](const ProcessSample& row) {
            return !matches(row, detailOf ? detailOf(row) : nullptr, needle);
        });
    }
    return rows;
}

}  // namespace tallowcrest
