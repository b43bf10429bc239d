#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "actions/local_requests.h"
#include "core/record_json.h"
#include "tests/support/advisor_machine.h"

namespace tallowcrest {

/// Every type that can run, in the order of the tables.
inline const std::vector<std::string> runnableTypes{"select_top", "local_purge", "scan_remote",
                                                    "copy_report", "export_diagnostics"};

/// An advisor that may do by itself all that an owner can allow: every type has earned trust, and
/// memory pressure is high.
struct SelfActingAdvisor : AdvisorMachine {
    explicit SelfActingAdvisor(AIAutonomyMode mode = AIAutonomyMode::autopilot,
                               bool runsSafeActions = true)
        : AdvisorMachine(
              [](SettingsStore& stored) {
                  std::map<std::string, AITrustRecord> records;
                  for (const std::string& type : runnableTypes) {
                      records[type] = {type, 0, trustedRuns, 0, {}};
                  }
                  stored.write("Tallowcrest.aiTrustRecords",
                               JSONData{*record_json::encode(records)});
              },
              "sk-key") {
        settings.set(&Settings::aiRequirePreview, false);
        settings.set(&Settings::aiAutonomyMode, mode);
        settings.set(&Settings::aiSafeActionsEnabled, runsSafeActions);
        takeSample(99.0);
    }

    /// One whole analysis, with whatever it leads to.
    void analyze(HttpReply reply) {
        fakes.http->reply = std::move(reply);
        advisor->provider.requestAIAnalysis();
        finishWork();
    }

    /// One question, with whatever its answer leads to.
    void ask(HttpReply reply) {
        fakes.http->reply = std::move(reply);
        advisor->chat.askQuickQuestion("Why?");
        finishWork();
    }

    /// How often each type has run by itself.
    std::map<std::string, std::int64_t> runs() const {
        std::map<std::string, std::int64_t> result;
        for (const auto& [type, record] : advisor->trust.aiTrustRecords()) {
            const bool began = std::ranges::find(runnableTypes, type) != runnableTypes.end();
            if (const auto count = record.runCount - (began ? trustedRuns : 0); count != 0) {
                result[type] = count;
            }
        }
        return result;
    }

    static constexpr std::int64_t trustedRuns = 4;
};

/// Which rule about what may happen by itself an analysis has broken; absent when it has broken
/// none.
inline std::optional<std::string> brokenRule(const SelfActingAdvisor& machine) {
    const Suggestions& suggestions = machine.advisor->suggestions;
    const Settings& settings = machine.settings.values();
    if (suggestions.aiActions().size() > 4) {
        return "at most four suggestions";
    }
    std::int64_t count = 0;
    for (const auto& [type, runs] : machine.runs()) {
        if (std::ranges::find(runnableTypes, type) == runnableTypes.end()) {
            return "only what the catalogue lists runs, not " + type;
        }
        count += runs;
    }
    if (!suggestions.aiActions().empty() && machine.fakes.http->reply->status / 100 != 2) {
        return "an error suggests nothing";
    }
    const int mostByTrust = settings.aiAutonomyMode == AIAutonomyMode::autopilot ? 2 : 0;
    if (count > mostByTrust + (settings.aiSafeActionsEnabled ? 1 : 0)) {
        return "at most two by trust, and one by the switch";
    }
    if (machine.localPorts.cachePurge->count > 0) {
        return "no purge without its confirmation";
    }
    if (!machine.localPorts.processes->signalled.empty() ||
        !machine.localPorts.gracefulQuit->names.empty()) {
        return "nothing is ever quit";
    }
    const auto& pending = machine.confirmations.pendingConfirmation();
    if (pending && (pending->kind != local_requests::purgeKind || !settings.aiSafeActionsEnabled)) {
        return "nothing but a purge is asked for";
    }
    if (machine.fakes.http->sent.size() != 1) {
        return "a reply sends nothing";
    }
    return std::nullopt;
}

/// The same for a question.
inline std::optional<std::string> brokenChatRule(const SelfActingAdvisor& machine) {
    const Advisor& advisor = *machine.advisor;
    const auto stored =
        record_json::decodeChatMessages(machine.store.json("Tallowcrest.aiChatMessages"));
    if (!stored || *stored != advisor.chat.aiChatMessages() || stored->size() != 3) {
        return "a question has one answer, which is stored";
    }
    if (!advisor.suggestions.aiActions().empty() ||
        !advisor.suggestions.approvedAIActionIDs().empty() ||
        !advisor.drafts.aiRuleDrafts().empty() || !machine.runs().empty() ||
        machine.confirmations.pendingConfirmation()) {
        return "no answer is read for actions";
    }
    return machine.fakes.http->sent.size() == 1 ? std::nullopt
                                                : std::optional<std::string>("it sends nothing");
}

}  // namespace tallowcrest
