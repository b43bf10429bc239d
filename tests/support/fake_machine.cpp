#include "tests/support/fake_machine.h"

#include <chrono>
#include <utility>
#include <vector>

#include "core/locale.h"
#include "monitor/system_monitor.h"
#include "remote/remote.h"
#include "sampling/latest_sample.h"
#include "tests/support/process_row.h"

namespace tallowcrest {

FakeMachine::FakeMachine() : locale(std::make_shared<PlainLocale>()) {
    ticks->ticks.reset();
}

FakeMachine::~FakeMachine() = default;

SystemMonitor& FakeMachine::monitor() {
    if (monitor_ == nullptr) {
        monitor_ = std::make_unique<SystemMonitor>(
            MonitorPorts{.jobs = jobs,
                         .clock = clock,
                         .settingsStore = *settingsStore,
                         .metrics = metrics,
                         .ticks = ticks,
                         .processDetails = processDetails,
                         .locale = locale,
                         .actions = {actions.ports(),
                                     {openActivityMonitor, storeOnPasteboard, openTailscaleApp}},
                         .remote = {.launcher = toolLauncher,
                                    .allowed = CommandSafetyPolicy::linuxExecutables(),
                                    .daemon = tailscaleDaemon,
                                    .tailscaleCLI = tailscaleDaemon ? "/absent/tailscale" : "",
                                    .actions = {.folder = reportFolder, .portTest = "nc -vz -w 5"}},
                         .reports = {reportFolder, atGreenwich},
                         .advisor = advisor,
                         .disk = disk,
                         .integration = {&notifications, openRoute, install, updates},
                         .sampleApplied = [this] { changeSample(); }},
            HostFacts{.cpuCount = 4,
                      .protection = {.ownPID = ownPID, .protectsLinuxSystem = true},
                      .loginName = "owner",
                      .startupProblems = startupProblems,
                      .hasLocalPublicKey = hasLocalPublicKey,
                      .readOnly = readOnly});
    }
    return *monitor_;
}

void FakeMachine::changeSample() {
    if (recommendations) {
        monitor_->sample().setRecommendations(*recommendations);
    }
    if (sessionInsights) {
        monitor_->sample().setSessionInsights(*sessionInsights);
    }
    if (sampleApplied) {
        sampleApplied();
    }
}

void FakeMachine::restart() {
    monitor_.reset();
}

ProcessSample& FakeMachine::addProcess(std::int64_t pid, std::string command, double cpu,
                                       double rssMB) {
    ProcessSample row = processRow(pid, std::move(command), cpu, rssMB);
    row.memoryPercent = rssMB / 163.84;
    row.startTime = actions.processes->running.try_emplace(pid, firstStartTime).first->second;
    metrics->processes.push_back(std::move(row));
    return metrics->processes.back();
}

void FakeMachine::endProcess(std::int64_t pid) {
    std::erase_if(metrics->processes, [pid](const ProcessSample& row) { return row.pid == pid; });
}

void FakeMachine::setTailDevices(std::vector<TailDevice> devices) {
    monitor().remote().tailnet.publish({std::move(devices), {}});
}

void FakeMachine::finishSamples() {
    workQueue.runAll();
    mainQueue.drain();
}

void FakeMachine::tick() {
    clock.advance(std::chrono::seconds(4));
    monitor().refresh();
    finishSamples();
}

}  // namespace tallowcrest
