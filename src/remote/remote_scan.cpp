#include "remote/remote_scan.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <mutex>
#include <stop_token>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "actions/tool_runner.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/locale.h"
#include "core/number_text.h"
#include "core/settings/settings_owner.h"
#include "remote/remote_health_record.h"
#include "remote/remote_script.h"
#include "remote/tail_device.h"
#include "remote/tailnet.h"
#include "sampling/highest_counts.h"

namespace tallowcrest {
namespace {

/// What a scan reads for each machine while the main thread may change it.
class SharedContext {
public:
    void set(RemoteScanContext context) {
        const std::scoped_lock held(lock_);
        context_ = std::move(context);
    }
    RemoteScanContext get() const {
        const std::scoped_lock held(lock_);
        return context_;
    }

private:
    mutable std::mutex lock_;
    RemoteScanContext context_;
};

/// Blocks for at most the deadline of the secure shell, in a job; less when `cancel` is requested.
RemoteHealth sampledMachine(const TailDevice& device, const RemoteScanContext& context,
                            ToolRunner& tools, const Clock& clock, const Locale& locale,
                            const std::stop_token& cancel) {
    constexpr std::chrono::milliseconds deadline{5000};
    const bool isLinux = !isRemoteMac(device, locale);
    auto way = remoteTarget(device, context.sshUsername, clock.now(), isLinux);
    if (auto* const record = std::get_if<RemoteHealth>(&way)) {
        return std::move(*record);
    }
    const auto& target = std::get<RemoteTarget>(way);
    const std::string output = tools.runSSH(
        {"-o", "BatchMode=yes", "-o", "ConnectTimeout=3", "-o", "StrictHostKeyChecking=accept-new",
         target.sshTarget, isLinux ? linuxSampleCommand() : std::string(macSampleScript())},
        deadline, cancel);
    return remoteHealthRecord(device, target.address, output, context, clock.now(), isLinux);
}

}  // namespace

struct RemoteScan::Running {
    std::stop_source cancel;
    std::optional<RemoteScanProgress> progress;
    SharedContext context;
};

RemoteScan::RemoteScan(const Services& services, Tailnet& tailnet, ToolRunner& tools)
    : services_(services),
      tailnet_(tailnet),
      tools_(tools),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      remoteHistory_(services.settings, stored::remoteHistory),
      contextChanges_(services.jobs.mainQueue(), [this] { publishContext(); }),
      jobs_(services.jobs) {
    contextChanges_.observe({&services.settings.observable(), &tailnet.observable()});
    state_.remoteTopAppSamples = services.settings.loadRemoteTopApps();
}

RemoteScan::~RemoteScan() = default;

bool RemoteScan::isScanned(const TailDevice& device) const {
    return isRemoteMac(device, services_.locale) ||
           (services_.settings.values().includeLinuxMachines &&
            isRemoteLinux(device, services_.locale));
}

bool RemoteScan::hasMachinesToScan() const {
    return std::ranges::any_of(tailnet_.state().tailDevices,
                               [this](const TailDevice& each) { return isScanned(each); });
}

std::size_t RemoteScan::linuxMachinesLeftOut() const {
    if (hasMachinesToScan()) {
        return 0;
    }
    return static_cast<std::size_t>(std::ranges::count_if(
        tailnet_.state().tailDevices,
        [this](const TailDevice& each) { return isRemoteLinux(each, services_.locale); }));
}

Outcome RemoteScan::scanRemoteMacs() {
    std::vector<TailDevice> devices;
    std::ranges::copy_if(tailnet_.state().tailDevices, std::back_inserter(devices),
                         [this](const TailDevice& each) { return isScanned(each); });
    if (devices.empty()) {
        return services_.log.record(
            Outcome::refused("No online Tailscale Macs are available to scan."));
    }
    running_.push_back(std::make_shared<Running>());
    publishContext();
    publishRunning();
    Outcome outcome = services_.log.record(
        Outcome::asked(fmt::format("Scanning {} remote Mac{} over Tailscale...", devices.size(),
                                   pluralEnding(devices.size()))));
    performRemoteScan(std::move(devices));
    return outcome;
}

void RemoteScan::publishContext() {
    const Settings& settings = services_.settings.values();
    for (const std::shared_ptr<Running>& each : running_) {
        each->context.set({settings.sshUsername, settings.protectedAppNames,
                           !tailnet_.state().tailscaleHealthIssues.empty()});
    }
}

void RemoteScan::performRemoteScan(std::vector<TailDevice> devices) {
    const std::size_t machines = devices.size();
    const std::shared_ptr<Running> running = running_.back();
    jobs_.runWithProgress<RemoteScanProgress>(
        Lane::remoteScan,
        [devices = std::move(devices), running, &tools = tools_, &clock = services_.clock,
         &locale = services_.locale,
         cancel = running->cancel.get_token()](const Stop& stop, const auto& report) {
            std::vector<RemoteHealth> results;
            for (const TailDevice& device : devices) {
                if (stop.isRequested() || cancel.stop_requested()) {
                    break;
                }
                report(
                    {results.size() + 1, devices.size(), device.hostName, remoteAddress(device)});
                RemoteHealth record =
                    sampledMachine(device, running->context.get(), tools, clock, locale, cancel);
                // What a shell printed that was ended says nothing of the machine.
                if (!cancel.stop_requested()) {
                    results.push_back(std::move(record));
                }
            }
            return results;
        },
        [this, running](RemoteScanProgress progress) {
            running->progress = std::move(progress);
            publishRunning();
        },
        [this, running, machines](std::vector<RemoteHealth> results) {
            std::erase(running_, running);
            if (results.size() < machines) {
                finishCanceledScan(std::move(results), machines);
            } else {
                finishRemoteScan(std::move(results));
            }
        });
}

Outcome RemoteScan::cancelScan() {
    if (running_.empty()) {
        return Outcome::ignored();
    }
    for (const auto& each : running_) {
        each->cancel.request_stop();
    }
    publishRunning();
    return Outcome::asked();
}

void RemoteScan::publishRunning() {
    state_.remoteScanInProgress = !running_.empty();
    state_.isCanceling = !running_.empty();
    state_.progress.reset();
    for (const auto& each : running_) {
        if (each->cancel.stop_requested()) {
            continue;
        }
        state_.isCanceling = false;
        if (each->progress) {
            state_.progress = each->progress;
        }
    }
    observable_->changed();
}

void RemoteScan::finishCanceledScan(std::vector<RemoteHealth> results, std::size_t machines) {
    recordRemoteSamples(results);
    const std::size_t reached = results.size();
    for (RemoteHealth& result : results) {
        const auto old = std::ranges::find(state_.remoteHealth, result.id, &RemoteHealth::id);
        if (old == state_.remoteHealth.end()) {
            state_.remoteHealth.push_back(std::move(result));
        } else {
            *old = std::move(result);
        }
    }
    if (reached > 0) {
        sortByTailnet();
        state_.keptRecords = state_.remoteHealth.size() - reached;
        std::unordered_set<std::string_view> known;
        for (const RemoteHealth& each : state_.remoteHealth) {
            known.insert(each.id);
        }
        state_.unknownMachines = static_cast<std::size_t>(std::ranges::count_if(
            tailnet_.state().tailDevices,
            [&](const TailDevice& each) { return isScanned(each) && !known.contains(each.id); }));
    }
    publishRunning();
    const std::string message = fmt::format("Remote scan canceled: {} of {} Mac{} scanned.",
                                            reached, machines, pluralEnding(machines));
    if (running_.empty()) {
        services_.log.recordMessage(message);
    } else {
        // The last action is that another one has begun.
        services_.log.recordEvent(ActivityKind::action, message);
    }
}

void RemoteScan::sortByTailnet() {
    std::unordered_map<std::string_view, std::size_t> places;
    for (const TailDevice& each : tailnet_.state().tailDevices) {
        places.emplace(each.id, places.size());
    }
    std::ranges::stable_sort(state_.remoteHealth, {}, [&places](const RemoteHealth& each) {
        const auto place = places.find(each.id);
        return place == places.end() ? places.size() : place->second;
    });
}

void RemoteScan::finishRemoteScan(std::vector<RemoteHealth> results) {
    state_.remoteHealth = std::move(results);
    state_.keptRecords = 0;
    state_.unknownMachines = 0;
    recordRemoteSamples(state_.remoteHealth);
    publishRunning();
    const std::size_t count = state_.remoteHealth.size();
    const auto online = std::ranges::count_if(state_.remoteHealth, &RemoteHealth::online);
    services_.log.recordMessage(fmt::format("Remote scan complete: {} of {} Mac{} responded.",
                                            online, count, pluralEnding(count)));
}

void RemoteScan::recordRemoteSamples(const std::vector<RemoteHealth>& results) {
    remoteHistory_.change([&](std::vector<RemoteHistoryPoint>& history) {
        for (const RemoteHealth& each : results) {
            if (!isReachable(each)) {
                continue;
            }
            if (!each.appImpacts.empty()) {
                std::int64_t& count =
                    state_.remoteTopAppSamples[each.hostName + ": " + each.appImpacts.front().name];
                // A stored count may be any number.
                count += count < std::numeric_limits<std::int64_t>::max() ? 1 : 0;
            }
            history.push_back({.id = UUID::random(),
                               .hostName = each.hostName,
                               .date = each.sampledAt,
                               .cpu = each.cpuPercent.value_or(0.0),
                               .memory = each.memoryPercent.value_or(0.0),
                               .status = std::string(title(each.status))});
        }
        stored::remoteHistory.trim(history);
    });
    // The table must not grow for ever.
    constexpr std::size_t mostCounts = 120;
    constexpr std::size_t keptCounts = 60;
    if (state_.remoteTopAppSamples.size() > mostCounts) {
        state_.remoteTopAppSamples = highestCounts(state_.remoteTopAppSamples, keptCounts);
    }
    services_.settings.saveRemoteTopApps(state_.remoteTopAppSamples);
}

}  // namespace tallowcrest
