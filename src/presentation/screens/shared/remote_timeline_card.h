#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
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

    /// `history` comes oldest first, all machines together; `profiles` are by host name. The
    /// machine `selectedHost` is always among those that are drawn; empty for none. Does nothing
    /// while `history` has no new point, `now` is on the same day and the rest is the same.
    void show(const std::vector<RemoteHistoryPoint>& history, Date now,
              const std::map<std::string, RemoteProfile>& profiles = {},
              const std::string& selectedHost = {});

private:
    struct Points {
        std::size_t count = 0;
        std::optional<UUID> last = {};
        std::int64_t day = 0;

        bool operator==(const Points&) const = default;
    };
    struct Shown {
        Points points;
        std::map<std::string, RemoteProfile> profiles;
        std::string selectedHost;
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
