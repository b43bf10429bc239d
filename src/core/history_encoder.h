#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// Encodes a timeline that is saved after every sample, gains points at its end and loses points at
/// its start. Only new points are encoded, which keeps a save cheap on the main thread. One thread
/// at a time.
class HistoryEncoder {
public:
    /// The same text that `record_json::encode` gives for `points`. Absent when a point has no JSON
    /// form; the next call then encodes all points again.
    std::optional<std::string> encode(std::span<const HistoryPoint> points);

private:
    /// How many of the encoded points are no longer at the start of `points`. Absent when `points`
    /// does not continue the encoded ones.
    std::optional<std::size_t> droppedFrom(std::span<const HistoryPoint> points) const;

    std::vector<HistoryPoint> encoded_;
    std::string text_;  ///< of `encoded_`, brackets included
};

}  // namespace tallowcrest
