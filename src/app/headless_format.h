#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/local_records.h"
#include "core/remote_records.h"
#include "disk/disk_records.h"

namespace tallowcrest {

/// One sample as a readable block that ends with an empty line: the machine, the first groups, the
/// recommendations and their reasons. Memory and disk that could not be read are "unknown". Control
/// characters in names are shown as "?", so that no process name can control the terminal.
std::string sampleBlock(const SystemSnapshot& snapshot,
                        const std::vector<Recommendation>& recommendations);

/// One sample as one line of JSON, line end included: the members of the snapshot under their own
/// names, and the recommendations. Dates are seconds since 2001-01-01T00:00:00Z; absent values are
/// null. The output is ASCII, so that no process name can control the terminal.
std::string sampleJSON(const SystemSnapshot& snapshot,
                       const std::vector<Recommendation>& recommendations);

/// The result of a scan of one other machine as a readable block that ends with an empty line: its
/// figures, its groups, and what to do. Control characters as in `sampleBlock`.
std::string remoteBlock(const RemoteHealth& machine);

/// The same as one line of JSON, line end included, with the members of the record under their own
/// names, as in `sampleJSON`.
std::string remoteJSON(const RemoteHealth& machine);

/// What the advisor says, and the figures that it spoke of.
struct Answer {
    std::optional<std::string> question;  ///< absent for an analysis
    std::string text;
    const SystemSnapshot& snapshot;
    double warningThreshold;    ///< percent
    double diskMinimumFreeGB;   ///< gigabytes
    bool isOfProvider = false;  ///< whether the provider says it, and not this machine
};

/// The answer with its line ends, and below it the figures and limits. Control characters as in
/// `sampleBlock`.
std::string answerBlock(const Answer& answer);

/// The same as one line of JSON, line end included: `question` (null for an analysis), `answer`,
/// `answeredBy` ("provider" or "device") and `figures` with the members of the snapshot that
/// answers speak of, under their own names.
std::string answerJSON(const Answer& answer);

/// A measured area of the disk as one readable line, with a second one that says what the remainder
/// stands for. Control characters as in `sampleBlock`.
std::string storageRow(const DiskStorageOffender& area);

/// The same as one line of JSON, line end included, with the members of the record under their own
/// names, as in `sampleJSON`. Bytes of a path that are no UTF-8 are U+FFFD.
std::string storageJSON(const DiskStorageOffender& area);

/// A large personal file, and what to consider about it, as two readable lines.
std::string largeFileRow(const StorageOptimizationSuggestion& file);

/// The same as one line of JSON, as `storageJSON`.
std::string largeFileJSON(const StorageOptimizationSuggestion& file);

}  // namespace tallowcrest
