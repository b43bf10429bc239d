#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "core/outcome.h"
#include "core/remote_records.h"
#include "core/services.h"
#include "core/settings/stored_list.h"

namespace tallowcrest {

class Observable;

/// What to change in a profile. What is absent stays as it is.
struct RemoteProfileChange {
    std::optional<std::string> nickname = {};
    std::optional<std::string> role = {};
    std::optional<double> warningThreshold = {};  ///< percent of memory; any number is taken
    std::optional<bool> allowRemotePurge = {};
};

/// The owner's settings for each other machine, by host name. They survive a restart, and the
/// machine's absence from the tailnet. Main thread.
class RemoteProfiles {
public:
    /// Begins with what an earlier run left. The references must outlive the object.
    explicit RemoteProfiles(const Services& services);
    ~RemoteProfiles();
    RemoteProfiles(const RemoteProfiles&) = delete;
    RemoteProfiles& operator=(const RemoteProfiles&) = delete;

    /// Those that are stored, by host name.
    const std::map<std::string, RemoteProfile>& remoteProfiles() const { return *remoteProfiles_; }

    /// The stored profile, or else the default one, with the warning threshold of this machine as
    /// it is now. The default role of a Linux machine is "Linux". Stores nothing.
    RemoteProfile remoteProfile(const std::string& hostName, bool isLinux = false) const;

    /// Changes and stores a profile, which is the default one if there was none. White space at the
    /// ends of a nickname and a role is removed, and the empty text is a valid one. Done, without a
    /// message.
    Outcome updateRemoteProfile(const std::string& hostName, const RemoteProfileChange& change,
                                bool isLinux = false);

    /// Notifies of a stored profile.
    Observable& observable() { return *observable_; }

private:
    Services services_;
    std::unique_ptr<Observable> observable_;
    StoredList<std::map<std::string, RemoteProfile>> remoteProfiles_;
};

}  // namespace tallowcrest
