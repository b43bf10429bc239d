#include "remote/remote_profiles.h"

#include <utility>

#include "core/jobs/jobs.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "core/settings/stored_lists.h"
#include "core/text.h"

namespace tallowcrest {

RemoteProfiles::RemoteProfiles(const Services& services)
    : services_(services),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      remoteProfiles_(services.settings, stored::remoteProfiles) {}

RemoteProfiles::~RemoteProfiles() = default;

RemoteProfile RemoteProfiles::remoteProfile(const std::string& hostName, bool isLinux) const {
    const auto found = remoteProfiles_->find(hostName);
    if (found != remoteProfiles_->end()) {
        return found->second;
    }
    return {.id = hostName,
            .nickname = hostName,
            .role = isLinux ? "Linux" : "Mac",
            .warningThreshold = services_.settings.values().warningThreshold,
            .allowRemotePurge = false};
}

Outcome RemoteProfiles::updateRemoteProfile(const std::string& hostName,
                                            const RemoteProfileChange& change, bool isLinux) {
    RemoteProfile profile = remoteProfile(hostName, isLinux);
    if (change.nickname) {
        profile.nickname = trimmingWhiteSpace(*change.nickname);
    }
    if (change.role) {
        profile.role = trimmingWhiteSpace(*change.role);
    }
    profile.warningThreshold = change.warningThreshold.value_or(profile.warningThreshold);
    profile.allowRemotePurge = change.allowRemotePurge.value_or(profile.allowRemotePurge);
    remoteProfiles_.change([&](std::map<std::string, RemoteProfile>& profiles) {
        profiles.insert_or_assign(hostName, std::move(profile));
    });
    observable_->changed();
    return Outcome::done();
}

}  // namespace tallowcrest
