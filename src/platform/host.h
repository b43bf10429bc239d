#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "actions/process_control.h"
#include "core/places.h"
#include "sampling/command_safety_policy.h"
#include "sampling/protection.h"
#include "sampling/system_cpu_load_reader.h"
#include "sampling/system_metrics_reader.h"
#include "sampling/tool_launcher.h"

/// What differs between the operating systems, chosen by the build. Any thread unless told
/// otherwise.
namespace tallowcrest::host {

/// The tools that may be launched here.
const CommandSafetyPolicy::AllowedExecutables& allowedExecutables();

/// The readers of this system. `launcher` must outlive the reader where tools are its source. Where
/// a reader keeps many files open, this also raises the process's limit on them.
std::shared_ptr<SystemMetricsReader> makeMetricsReader(ToolLauncher& launcher);
std::shared_ptr<CPUTickSource> makeTickSource();

/// Finds and signals this system's processes. `launcher` must outlive it where a tool does that.
std::shared_ptr<ProcessControl> makeProcessControl(ToolLauncher& launcher);

/// Whether the process that a sample told of still runs. One without a start time stands for
/// whichever process bears its number.
bool isStillThere(const ProcessSample& sample);

/// The tools that purge the file caches for the user that this process runs as, in their order.
std::vector<ToolRequest> purgeTools();

/// What must not be quit here, with this process's own identifier.
ProtectionPolicy protectionPolicy();

/// Cores that are switched on, at least 1, whichever of them this process is confined to.
int activeProcessorCount();

/// The user's login name; empty when the system does not know one.
std::string loginName();

/// The program's own folder for what it keeps of the user's, as an absolute path. It need not
/// exist. Empty when the system does not tell where the user's data belongs.
std::filesystem::path dataDirectory();

/// The places that texts name: the one table of them.
Places places();

/// The folder for exported reports, as an absolute path. It need not exist. Empty when the system
/// does not tell where the user's documents belong. May read a file.
std::filesystem::path reportsDirectory();

/// The running program's own file; empty when the system does not tell.
std::filesystem::path executablePath();

/// The system's own process viewers, as absolute paths in the order in which they are tried; not
/// all of them need be installed.
std::vector<std::string> activityMonitors();

/// Gives the calling thread utility priority: a low share of the processor and disk access only
/// when nobody else wants it. Where the system refuses, the thread keeps what it has.
void lowerThreadPriority();

/// How long this process has been running, to the system's own accuracy; 0 when it does not tell.
std::chrono::duration<double, std::milli> timeSinceProcessStart();

/// Whether a window could be opened, as far as the environment tells.
bool hasDisplay();

}  // namespace tallowcrest::host
