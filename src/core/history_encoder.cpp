#include "core/history_encoder.h"

#include <algorithm>

#include "core/record_json.h"

namespace tallowcrest {
namespace {

/// Removes the first `count` points from an encoded list that has more than that. No member of a
/// point contains a brace, so each point ends at the next closing one.
void removeFirst(std::string& text, std::size_t count) {
    std::size_t end = 1;
    for (std::size_t i = 0; i < count; ++i) {
        end = text.find('}', end) + 2;
    }
    text.erase(1, end - 1);
}

}  // namespace

std::optional<std::size_t> HistoryEncoder::droppedFrom(std::span<const HistoryPoint> points) const {
    if (encoded_.empty() || points.empty()) {
        return std::nullopt;
    }
    const auto first = std::find(encoded_.begin(), encoded_.end(), points.front());
    const auto kept = static_cast<std::size_t>(encoded_.end() - first);
    if (kept == 0 || kept > points.size() || !std::equal(first, encoded_.end(), points.begin())) {
        return std::nullopt;
    }
    return encoded_.size() - kept;
}

std::optional<std::string> HistoryEncoder::encode(std::span<const HistoryPoint> points) {
    const std::optional<std::size_t> dropped = droppedFrom(points);
    const std::size_t kept = dropped ? encoded_.size() - *dropped : 0;
    const std::vector<HistoryPoint> added(points.begin() + static_cast<std::ptrdiff_t>(kept),
                                          points.end());
    const std::optional<std::string> addedText = record_json::encode(added);
    if (!addedText) {
        encoded_.clear();
        text_.clear();
        return std::nullopt;
    }
    if (!dropped) {
        text_ = *addedText;
    } else {
        removeFirst(text_, *dropped);
        if (!added.empty()) {
            text_.back() = ',';
            text_.append(*addedText, 1);
        }
    }
    encoded_.assign(points.begin(), points.end());
    return text_;
}

}  // namespace tallowcrest
