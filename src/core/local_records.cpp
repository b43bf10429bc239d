#include "core/local_records.h"

#include <algorithm>

namespace tallowcrest {

std::string_view lastPathComponent(std::string_view path) {
    const std::size_t end = path.find_last_not_of('/');
    if (end == std::string_view::npos) {
        return {};
    }
    path = path.substr(0, end + 1);
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view displayNameOf(std::string_view command) {
    if (command.starts_with('[') && command.ends_with(']')) {
        return command;
    }
    const std::string_view name = lastPathComponent(command);
    return name.empty() ? command : name;
}

const ProcessSample* findProcess(std::span<const ProcessSample> rows, std::int64_t pid) {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [pid](const ProcessSample& row) { return row.pid == pid; });
    return found == rows.end() ? nullptr : &*found;
}

std::string_view title(Recommendation::Severity severity) {
    switch (severity) {
        case Recommendation::Severity::info:
            return "Info";
        case Recommendation::Severity::caution:
            return "Caution";
        case Recommendation::Severity::urgent:
            return "Urgent";
    }
    return {};
}

}  // namespace tallowcrest
