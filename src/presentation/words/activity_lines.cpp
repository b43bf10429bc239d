#include "presentation/words/activity_lines.h"

#include <algorithm>

#include "presentation/words/dashboard_text.h"

namespace tallowcrest {

using dashboard_text::text;

std::vector<ActivityLine> activityLines(const std::vector<ActivityEvent>& events, std::size_t limit,
                                        Date now) {
    std::vector<ActivityLine> lines;
    lines.reserve(std::min(events.size(), limit));
    for (const ActivityEvent& event : events) {
        if (lines.size() == limit) {
            break;
        }
        lines.push_back({event.title == "Warning", text(event.title), text(event.detail),
                         dashboard_text::shortTimeText(event.date, now)});
    }
    return lines;
}

}  // namespace tallowcrest
