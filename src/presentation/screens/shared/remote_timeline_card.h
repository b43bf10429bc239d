#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/date.h"
#include "core/remote_records.h"
#include "core/uuid.h"
#include "presentation/widgets/card.h"

namespace tallowcrest {

class CardGrid;
class StableLineGraph;
struct RemoteTimeline;

/// Memory and CPU of the other machines over the last scans, one line per machine. Main thread.
class RemoteTimelineCard final : public Card {
    Q_OBJECT

public:
    /// The object names begin with `identifier`.
    explicit RemoteTimelineCard(const QString& identifier, QWidget* parent = nullptr);

    /// `history` comes oldest first, all machines together. Does nothing while it has no new point
    /// and `now` is on the same day.
    void show(const std::vector<RemoteHistoryPoint>& history, Date now);

private:
    struct Shown {
        std::size_t count = 0;
        std::optional<UUID> last = {};
        std::int64_t day = 0;

        bool operator==(const Shown&) const = default;
    };

    void showLines(const RemoteTimeline& timeline);

    ElidedLabel* retained_ = nullptr;
    CardGrid* graphs_ = nullptr;
    StableLineGraph* memory_ = nullptr;
    StableLineGraph* cpu_ = nullptr;
    ElidedLabel* leftOut_ = nullptr;
    std::optional<Shown> shown_;
};

}  // namespace tallowcrest
