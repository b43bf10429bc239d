#pragma once

namespace tallowcrest {

/// Arranges at once what has changed, in every window. What comes or goes on a page is told from
/// parent to parent, one round of events for each, and no arrangement in between is to be painted.
/// Without such an event it costs next to nothing. Main thread.
void arrangePendingLayouts();

}  // namespace tallowcrest
