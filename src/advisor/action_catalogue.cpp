#include "advisor/action_catalogue.h"

#include <algorithm>
#include <array>

namespace tallowcrest {
namespace {

struct Row {
    std::string_view type;
    AdvisorAction action;
    std::string_view runButtonTitle;
    std::string_view defaultSuggestionTitle;
    std::string_view trustDisplayName;
    bool mayRunByItself;
    bool isSafe;
};

constexpr std::array catalogue{
    Row{"select_top", AdvisorAction::selectTop, "Select Top", "Select the top app",
        "Select top app", true, true},
    Row{"local_purge", AdvisorAction::localPurge, "Purge", "Purge reclaimable file caches",
        "Purge caches", false, true},
    Row{"scan_remote", AdvisorAction::scanRemote, "Scan Remotes", "Scan remote Macs",
        "Scan remote Macs", true, true},
    Row{"copy_report", AdvisorAction::copyReport, "Copy Report", "Copy diagnostics report",
        "Copy report", true, false},
    Row{"export_diagnostics", AdvisorAction::exportDiagnostics, "Export", "Export diagnostics",
        "Export diagnostics", true, false},
};

/// Null for a type that cannot run.
const Row* rowOf(std::string_view type) {
    const auto found =
        std::ranges::find_if(catalogue, [type](const Row& row) { return row.type == type; });
    return found == catalogue.end() ? nullptr : &*found;
}

const Row& rowOf(AdvisorAction action) {
    return *std::ranges::find_if(catalogue,
                                 [action](const Row& row) { return row.action == action; });
}

/// With blanks in place of underscores, and each word with a capital letter and small ones.
std::string asWords(std::string_view type) {
    std::string words(type);
    bool beginsWord = true;
    for (char& c : words) {
        if (c == '_') {
            c = ' ';
        } else if (beginsWord && c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        } else if (!beginsWord && c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
        beginsWord = c == ' ';
    }
    return words;
}

}  // namespace

std::optional<AdvisorAction> advisorAction(std::string_view type) {
    const Row* row = rowOf(type);
    return row == nullptr ? std::nullopt : std::optional(row->action);
}

bool mayRunByItself(AdvisorAction action) {
    return rowOf(action).mayRunByItself;
}

bool isSafeAction(AdvisorAction action) {
    return rowOf(action).isSafe;
}

std::string_view runButtonTitle(std::string_view type) {
    const Row* row = rowOf(type);
    return row == nullptr ? "Run" : row->runButtonTitle;
}

std::string_view defaultSuggestionTitle(std::string_view type) {
    const Row* row = rowOf(type);
    return row == nullptr ? "Review recommendation" : row->defaultSuggestionTitle;
}

std::string trustDisplayName(std::string_view type) {
    if (type == diskCleanupAction) {
        return "Disk cache cleanup";
    }
    const Row* row = rowOf(type);
    return row == nullptr ? asWords(type) : std::string(row->trustDisplayName);
}

}  // namespace tallowcrest
