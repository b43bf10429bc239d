#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/local_records.h"

namespace tallowcrest {

class Locale;
struct Settings;
struct SelectedTargetSummary;

/// What the guidance of this machine speaks from. The references must stay valid during the call.
struct GuidanceFacts {
    const SystemSnapshot& snapshot;
    double warningThreshold;   ///< percent, for memory and CPU
    double diskMinimumFreeGB;  ///< gigabytes
    const Locale& locale;
};

/// The facts of a sample under the present settings. The references must outlive the result.
GuidanceFacts guidanceFacts(const SystemSnapshot& snapshot, const Settings& settings,
                            const Locale& locale);

// The answers of this machine alone: the same facts give the same words. Control characters in the
// names of processes become blanks. Any thread.

/// One sentence each on memory, CPU and disk.
std::string onDeviceAnalysis(const GuidanceFacts& facts);

/// The answer to a question, by the first subject that it mentions. `target` is null when nothing
/// is selected.
std::string onDeviceChatAnswer(std::string_view question, const GuidanceFacts& facts,
                               const SelectedTargetSummary* target);

/// The answer to every question before the first sample.
inline constexpr std::string_view noSampleAnswer =
    "I do not have a diagnostic sample yet. Refresh once, then ask again.";

std::string leadingProcessSentence(const ProcessSample& process, const Locale& locale);

}  // namespace tallowcrest
