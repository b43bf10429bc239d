#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>

#include "core/date.h"
#include "core/records_hash.h"
#include "core/uuid.h"

namespace tallowcrest {

/// What an event of the activity log is about. The enumerators stand in activity_kinds.h, so that a
/// further one does not rebuild everything that only passes events on.
enum class ActivityKind : std::uint8_t;

/// The kind of a stored event, whose stored form has no more than these two texts. Pure.
ActivityKind kindOfStoredEvent(std::string_view title, std::string_view detail);

/// One entry of the activity log. Identity: `id`. Persisted.
struct ActivityEvent {
    UUID id;
    Date date;
    std::string title;
    std::string detail;
    /// Not stored: derived from the texts when an event is read.
    ActivityKind kind = kindOfStoredEvent(title, detail);

    auto fields() const { return std::tie(id, date, title, detail); }
    bool operator==(const ActivityEvent&) const = default;
};

}  // namespace tallowcrest
