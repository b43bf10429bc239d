#pragma once

class QString;

namespace tallowcrest {

class Automation;
class DashboardSections;
class DiskAutopilotBlock;
struct Disk;
struct DiskAutopilotFacts;

/// Makes the Disk Autopilot block of a page and connects it: its buttons press and clear the
/// emergency stop and begin and stop the work of `disk`, and `sections` keeps whether the owner has
/// closed it. `page` is what the identifiers begin with. The references must outlive the block.
/// Main thread.
DiskAutopilotBlock* makeDiskAutopilot(const QString& page, Automation& automation, Disk& disk,
                                      DashboardSections& sections);

/// Shows the present state in `block`, which is closed if `sections` says so. Main thread.
void showDiskAutopilot(DiskAutopilotBlock& block, const DashboardSections& sections,
                       const DiskAutopilotFacts& facts);

}  // namespace tallowcrest
