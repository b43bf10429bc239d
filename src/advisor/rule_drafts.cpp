#include "advisor/rule_drafts.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "advisor/draft_rules.h"
#include "core/activity_log.h"
#include "core/jobs/jobs.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "core/settings/stored_lists.h"
#include "remote/remote_scan.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {

RuleDrafts::RuleDrafts(const Services& services, const LatestSample& sample, const RemoteScan& scan)
    : services_(services),
      sample_(sample),
      scan_(scan),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      drafts_(services.settings, stored::ruleDrafts) {}

RuleDrafts::~RuleDrafts() = default;

void RuleDrafts::generateRuleDrafts(std::span<const AIActionSuggestion> suggestions) {
    auto candidates =
        draft_rules::candidates({.snapshot = sample_.snapshot() ? &*sample_.snapshot() : nullptr,
                                 .warningThreshold = services_.settings.values().warningThreshold,
                                 .hasRemoteHealth = !scan_.state().remoteHealth.empty(),
                                 .suggestions = suggestions});
    if (candidates.empty()) {
        return;
    }
    drafts_.change([&candidates](std::vector<AIRuleDraft>& drafts) {
        draft_rules::append(drafts, std::move(candidates));
    });
    observable_->changed();
}

Outcome RuleDrafts::toggleRuleDraft(const AIRuleDraft& draft) {
    const auto found = std::ranges::find(*drafts_, draft.id, &AIRuleDraft::id);
    if (found == drafts_->end()) {
        return Outcome::ignored();
    }
    const auto index = static_cast<std::size_t>(found - drafts_->begin());
    drafts_.change([index](std::vector<AIRuleDraft>& drafts) {
        drafts[index].enabled = !drafts[index].enabled;
    });
    observable_->changed();
    const AIRuleDraft& toggled = (*drafts_)[index];
    return services_.log.record(Outcome::done(fmt::format(
        "{} AI rule draft: {}.", toggled.enabled ? "Enabled" : "Disabled", toggled.title)));
}

}  // namespace tallowcrest
