#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "actions/action_ports.h"
#include "actions/cache_purge.h"
#include "actions/graceful_quit.h"
#include "actions/process_control.h"

namespace tallowcrest {

/// A table of running processes that a test sets. Signals nothing, and records what it would have
/// signalled.
class FakeProcessControl final : public ProcessControl {
public:
    struct Signalled {
        std::int64_t pid = 0;
        std::uint64_t startTime = 0;

        bool operator==(const Signalled&) const = default;
    };

    std::unique_ptr<HeldProcess> hold(std::int64_t pid, std::uint64_t startTime) override {
        held.push_back(pid);
        const auto now = running.find(pid);
        const std::uint64_t current = now == running.end() ? 0 : now->second;
        return std::make_unique<Held>(*this, pid, startTime == 0 ? current : startTime);
    }

    std::map<std::int64_t, std::uint64_t> running;  ///< start times by pid, never 0
    /// The results of signals to running processes, by pid; `asked` without an entry.
    std::map<std::int64_t, TerminationResult> results;
    std::vector<std::int64_t> held;
    /// How many processes are held now.
    long heldNow() const { return handles_.use_count() - 1; }
    std::vector<Signalled> signalled;

private:
    struct Held final : HeldProcess {
        Held(FakeProcessControl& owner, std::int64_t pid, std::uint64_t startTime)
            : control(owner), handle(owner.handles_), number(pid), start(startTime) {}

        TerminationResult terminate() override {
            const auto now = control.running.find(number);
            if (now == control.running.end()) {
                return {TerminationResult::Kind::refused, {}};
            }
            if (now->second != start) {
                return {TerminationResult::Kind::blocked, {}};
            }
            const auto result = control.results.find(number);
            if (result != control.results.end()) {
                return result->second;
            }
            control.signalled.push_back({number, start});
            return {TerminationResult::Kind::asked, {}};
        }

        FakeProcessControl& control;
        std::shared_ptr<int> handle;
        std::int64_t number;
        std::uint64_t start;
    };

    std::shared_ptr<int> handles_ = std::make_shared<int>();
};

/// Returns what a test set, and records the calls.
class FakeGracefulQuit final : public GracefulQuit {
public:
    bool succeeds = false;
    std::vector<std::string> names;
    std::vector<ProcessSample> lastMembers;

private:
    bool ask(const std::string& name, const std::vector<ProcessSample>& members) override {
        names.push_back(name);
        lastMembers = members;
        return succeeds;
    }
};

class FakeCachePurge final : public CachePurge {
public:
    PurgeResult purge() override {
        ++count;
        return result;
    }

    PurgeResult result{PurgeResult::Kind::purged, {}};
    int count = 0;
};

/// The three fakes above, as the ports of a monitor under test.
struct FakeLocalActions {
    std::shared_ptr<FakeProcessControl> processes = std::make_shared<FakeProcessControl>();
    std::shared_ptr<FakeGracefulQuit> gracefulQuit = std::make_shared<FakeGracefulQuit>();
    std::shared_ptr<FakeCachePurge> cachePurge = std::make_shared<FakeCachePurge>();

    LocalActionPorts ports() const { return {processes, gracefulQuit, cachePurge}; }
};

}  // namespace tallowcrest
