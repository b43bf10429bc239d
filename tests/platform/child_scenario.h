#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "sampling/tool_launcher.h"

/// What tests with real children need.
namespace tallowcrest::child_scenario {

/// A request that lets the shell play a tool of any behaviour.
ToolRequest shellTool(const std::string& script,
                      std::optional<std::chrono::milliseconds> timeout = std::nullopt);

/// Whether `condition` came true before a generous limit.
bool eventually(const std::function<bool()>& condition);

/// Whether the process runs; a zombie does not.
bool isRunning(pid_t pid);

/// Whether this process has a child, dead or alive, that nobody has waited for.
bool hasChild();

/// How many descriptors this process has open.
int openDescriptorCount();

/// A folder that is removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    std::string path(const std::string& name) const { return root_ + "/" + name; }

    /// Writes a file and returns its path.
    std::string file(const std::string& name, const std::string& text, mode_t mode) const;

    /// The text of a file; empty when there is none.
    std::string read(const std::string& name) const;

private:
    std::string root_;
};

}  // namespace tallowcrest::child_scenario
