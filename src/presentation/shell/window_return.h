#pragma once

namespace tallowcrest {

class DashboardWindow;

/// From now on the closed window is shown again when the program comes forward and no other window
/// of it can be seen. For desktops where that is what a start of a running program does. Main
/// thread.
void returnWhenActivated(DashboardWindow& window);

}  // namespace tallowcrest
