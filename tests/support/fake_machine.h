#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "actions/actions.h"
#include "core/activity_log.h"
#include "core/jobs/jobs.h"
#include "core/locale.h"
#include "core/settings/settings_store.h"
#include "monitor/auto_rules.h"
#include "monitor/system_monitor.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"
#include "tests/support/fake_local_actions.h"
#include "tests/support/fake_notification_center.h"
#include "tests/support/fake_readers.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {

/// A whole monitor on a machine of which a test sets every figure. Without ticks of its own, the
/// machine's CPU percentage is the sum over the processes, divided by its four cores.
class FakeMachine {
public:
    static constexpr std::int64_t ownPID = 4242;
    static constexpr std::uint64_t firstStartTime = 1000;

    FakeMachine() { ticks->ticks.reset(); }

    /// Built at the first call, with what the fields below hold by then.
    SystemMonitor& monitor() {
        if (monitor_ == nullptr) {
            monitor_ = std::make_unique<SystemMonitor>(
                MonitorPorts{.jobs = jobs,
                             .clock = clock,
                             .settingsStore = store,
                             .metrics = metrics,
                             .ticks = ticks,
                             .locale = locale,
                             .actions = {actions.ports(), openActivityMonitor, storeOnPasteboard},
                             .reportFolder = reportFolder,
                             .utcOffset = atGreenwich,
                             .notifications = &notifications,
                             .openRoute = openRoute,
                             .remoteScan = remoteScan},
                HostFacts{.cpuCount = 4,
                          .protection = {.ownPID = ownPID, .protectsLinuxSystem = true},
                          .loginName = "owner",
                          .startupProblems = startupProblems,
                          .places = {.caches = "~/.cache"},
                          .findings = findings,
                          .onlyLooks = onlyLooks});
            monitor_->setSampleApplied([this] {
                if (recommendations) {
                    monitor_->sample().setRecommendations(*recommendations);
                }
                if (sessionInsights) {
                    monitor_->sample().setSessionInsights(*sessionInsights);
                }
                if (sampleApplied) {
                    sampleApplied();
                }
            });
        }
        return *monitor_;
    }

    /// Ends the monitor. The next call of `monitor` builds one on what is stored by then.
    void restart() { monitor_.reset(); }

    /// Adds a process to the machine, and to what the next sample finds.
    ProcessSample& addProcess(std::int64_t pid, std::string command, double cpu, double rssMB) {
        ProcessSample row;
        row.pid = pid;
        row.cpu = cpu;
        row.rssMB = rssMB;
        row.memoryPercent = rssMB / 163.84;
        row.arguments = command;
        row.command = std::move(command);
        row.startTime = actions.processes->running.try_emplace(pid, firstStartTime).first->second;
        metrics->processes.push_back(std::move(row));
        return metrics->processes.back();
    }

    /// Runs every queued sample and everything that follows from it to its end.
    void finishSamples() {
        while (workQueue.pendingCount() > 0) {
            workQueue.run();
        }
        mainQueue.drain();
    }

    /// Lets one tick pass and its sample land.
    void tick() {
        clock.advance(std::chrono::seconds(4));
        monitor().refresh();
        finishSamples();
    }

    ManualClock clock;
    ManualMainQueue mainQueue;
    ManualWorkQueue workQueue;
    MemorySettingsStore store;
    std::shared_ptr<FakeMetricsReader> metrics = std::make_shared<FakeMetricsReader>();
    std::shared_ptr<FakeTickSource> ticks = std::make_shared<FakeTickSource>();
    std::shared_ptr<const Locale> locale = std::make_shared<PlainLocale>();
    FakeLocalActions actions;
    FakeNotificationCenter notifications;
    std::shared_ptr<FakeReportFolder> reportFolder = std::make_shared<FakeReportFolder>();
    Jobs jobs{mainQueue, workQueue};
    StartupFindings findings{.processArguments = {"tallowcrest", "--ui-testing"}};
    std::vector<std::string> startupProblems;
    bool onlyLooks = false;
    std::function<bool()> openActivityMonitor;
    std::function<void(const std::string& text)> storeOnPasteboard;
    std::function<void(AppRoute)> openRoute;
    AutoScan* remoteScan = nullptr;
    /// With a value, what each sample has instead of what follows from its figures.
    std::optional<std::vector<Recommendation>> recommendations;
    std::optional<std::vector<SessionInsight>> sessionInsights;
    /// Called after each sample.
    std::function<void()> sampleApplied;

private:
    std::unique_ptr<SystemMonitor> monitor_;
};

}  // namespace tallowcrest
