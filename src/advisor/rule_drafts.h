#pragma once

#include <memory>
#include <span>
#include <vector>

#include "core/advisor_records.h"
#include "core/outcome.h"
#include "core/services.h"
#include "core/settings/stored_list.h"

namespace tallowcrest {

class LatestSample;
class Observable;
class RemoteScan;

/// Proposals for rules, in words, that analyses have left. The owner can enable one, which is
/// remembered and has no other effect: nothing reads it. Main thread.
class RuleDrafts {
public:
    /// Begins with what an earlier run left. The references must outlive the object.
    RuleDrafts(const Services& services, const LatestSample& sample, const RemoteScan& scan);
    ~RuleDrafts();
    RuleDrafts(const RuleDrafts&) = delete;
    RuleDrafts& operator=(const RuleDrafts&) = delete;

    /// Oldest first.
    const std::vector<AIRuleDraft>& aiRuleDrafts() const { return *drafts_; }

    /// Adds the drafts that follow from the suggestions and the present state.
    void generateRuleDrafts(std::span<const AIActionSuggestion> suggestions);

    /// Enables or disables the draft with the same id. Ignored when there is none.
    Outcome toggleRuleDraft(const AIRuleDraft& draft);

    /// Notifies of changed drafts.
    Observable& observable() { return *observable_; }

private:
    Services services_;
    const LatestSample& sample_;
    const RemoteScan& scan_;
    std::unique_ptr<Observable> observable_;
    StoredList<std::vector<AIRuleDraft>> drafts_;
};

}  // namespace tallowcrest
