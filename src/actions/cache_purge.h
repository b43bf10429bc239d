#pragma once

#include <string>
#include <vector>

#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// The result of purging the file caches. Not an `Outcome`: the caller words it.
struct PurgeResult {
    enum class Kind {
        purged,
        refused,  ///< a tool ran and failed, for example because the owner may not purge
        blocked,  ///< a tool is not allowed here; neither it nor a later one was launched
        failed,   ///< a tool could not be launched
    };

    Kind kind = Kind::failed;
    std::string error;  ///< the system's message for `failed`, else empty

    bool operator==(const PurgeResult&) const = default;
};

/// Makes the system drop its reclaimable file caches.
class CachePurge {
public:
    virtual ~CachePurge() = default;

    /// Blocks, perhaps until a person has answered a request for authorisation. Any thread but the
    /// main one.
    virtual PurgeResult purge() = 0;
};

/// The tools, in order, that purge the caches of macOS.
std::vector<ToolRequest> macOSPurgeTools();

/// The same for Linux: changed pages are written out first, because only clean ones can be dropped.
/// Only root may drop them, so the desktop asks any other user for authorisation.
std::vector<ToolRequest> linuxPurgeTools(bool isRoot);

/// Purges by launching tools one after another until one fails.
class ToolCachePurge final : public CachePurge {
public:
    /// The references must outlive the object.
    ToolCachePurge(const CommandSafetyPolicy::AllowedExecutables& allowed, ToolLauncher& launcher,
                   std::vector<ToolRequest> tools);

    PurgeResult purge() override;

private:
    const CommandSafetyPolicy::AllowedExecutables& allowed_;
    ToolLauncher& launcher_;
    std::vector<ToolRequest> tools_;
};

}  // namespace tallowcrest
