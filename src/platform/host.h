#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "actions/process_control.h"
#include "core/places.h"
#include "disk/disk_ports.h"
#include "integration/install_plan.h"
#include "remote/tailnet_reading.h"
#include "sampling/command_safety_policy.h"
#include "sampling/process_details.h"
#include "sampling/protection.h"
#include "sampling/system_cpu_load_reader.h"
#include "sampling/system_metrics_reader.h"
#include "sampling/tool_launcher.h"

/// The functions that differ between operating systems; the build selects the implementation. Any
/// thread.
namespace tallowcrest::host {

/// The tools that may be launched on this system.
const CommandSafetyPolicy::AllowedExecutables& allowedExecutables();

/// The readers of this system. `launcher` must outlive the metrics reader. Also raises the
/// process's limit of open files where the reader keeps many of them open.
std::shared_ptr<SystemMetricsReader> makeMetricsReader(ToolLauncher& launcher);
std::shared_ptr<CPUTickSource> makeTickSource();

/// Null where this system tells nothing more about a process than the table.
std::shared_ptr<ProcessDetailsReader> makeProcessDetailsReader();

/// Finds and signals processes. `launcher` must outlive it.
std::shared_ptr<ProcessControl> makeProcessControl(ToolLauncher& launcher);

/// Whether the sampled process is still running. A sample without a start time matches any process
/// with its pid.
bool isStillThere(const ProcessSample& sample);

/// The tools that purge the file caches, to be run in this order. They depend on the user that this
/// process runs as.
std::vector<ToolRequest> purgeTools();

/// The processes that must not be quit on this system, this process among them.
ProtectionPolicy protectionPolicy();

/// The number of cores that are online, at least 1, even if this process may use only some of them.
int activeProcessorCount();

/// The user's login name; empty when unknown.
std::string loginName();

/// The folder of the program's own data for this user, as an absolute path. It need not exist.
/// Empty when it cannot be determined.
std::filesystem::path dataDirectory();

/// The places on disk that displayed texts name.
Places places();

/// Where the disk's care looks on this machine. Empty where the home directory is unknown. May read
/// a file.
DiskPlaces diskPlaces();

/// The folder for exported reports, as an absolute path. It need not exist. Empty when it cannot be
/// determined. May read a file.
std::filesystem::path reportsDirectory();

/// The file of the running program; empty when unknown.
std::filesystem::path executablePath();

/// Where the program is installed for this user, and how it is started at login.
InstallPlan installPlan();
LoginPlan loginPlan();

/// How the names of packages of this program end, ".deb".
std::string packageEnding();

/// The address of the feed of updates, for a build that has `built`: where programs are
/// applications with an information dictionary, the text that this one has there, else `built`.
/// Empty when there is none.
std::string updateFeed(const std::string& built);

/// The absolute paths of the system's process viewers, in the order in which to try them. Not all
/// of them need be installed.
std::vector<std::string> activityMonitors();

/// The same for the applications that show the client of the tailnet.
std::vector<std::string> tailscaleApps();

/// The daemon of the tailnet's client. Absent on systems where it has no local socket at a fixed
/// place.
TailscaleDaemon tailscaleDaemon();

/// Gives the calling thread utility priority: a low share of the processor, and disk access only
/// when no other process wants it. Where the system refuses, the priority stays.
void lowerThreadPriority();

/// How long this process has been running, as accurately as the system knows; 0 when unknown.
std::chrono::duration<double, std::milli> timeSinceProcessStart();

/// Whether the environment names a display to open windows on.
bool hasDisplay();

}  // namespace tallowcrest::host
