#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// Encodes a timeline that is saved again and again while it gains points at its end and loses
/// some at its start. Only what is new is encoded, so that a save on every sample stays cheap on
/// the main thread. Not for use from two threads at once.
class HistoryEncoder {
public:
    /// The very text that `record_json::encode` gives for `points`. Absent when a point has no
    /// JSON form; the next call then starts afresh.
    std::optional<std::string> encode(std::span<const HistoryPoint> points);

private:
    /// How many of the encoded points have left the start; absent when `points` does not go on
    /// from what was encoded.
    std::optional<std::size_t> droppedFrom(std::span<const HistoryPoint> points) const;

    std::vector<HistoryPoint> encoded_;
    std::string text_;  ///< of `encoded_`, brackets included
};

}  // namespace tallowcrest
