#pragma once

class QWidget;

namespace tallowcrest {

/// Carries out the pending layouts of `widget` and of what is visible within it in one pass, before
/// anything is painted. Qt would pass a changed size on by one parent per turn of the event loop
/// and might paint each intermediate arrangement. Costs next to nothing if no layout is pending.
/// Main thread.
void arrangeNow(QWidget& widget);

}  // namespace tallowcrest
