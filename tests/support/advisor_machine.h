#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "actions/actions.h"
#include "advisor/advisor.h"
#include "reports/reports.h"
#include "sampling/app_impact.h"
#include "sampling/latest_sample.h"
#include "tests/support/fake_advisor_ports.h"
#include "tests/support/fake_local_actions.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/process_row.h"
#include "tests/support/remote_machines.h"
#include "tests/support/test_services.h"

namespace tallowcrest {

/// An advisor with everything that it can act on, on a machine whose figures a test sets.
struct AdvisorMachine : TestServices {
    /// `fill` writes into the store what an earlier run would have stored. With `key` there is a
    /// stored one.
    explicit AdvisorMachine(const std::function<void(SettingsStore&)>& fill = {},
                            std::optional<std::string> key = {})
        : TestServices(fill) {
        fakes.secrets->secret = std::move(key);
        begin();
    }

    /// Builds the advisor from what is stored now, in place of an earlier one.
    void begin() {
        beginSearch();
        finishWork();
    }

    /// The same, but the search for the stored key has not ended.
    void beginSearch() {
        advisor.reset();
        advisor.emplace(
            Advisor::Dependencies{services, sample, actions, remote.scan, reports, fakes.ports()});
    }

    /// Runs all background work, and what follows from it.
    void finishWork() {
        while (workQueue.pendingCount() + mainQueue.pendingCount() > 0) {
            TestServices::finishWork();
        }
    }

    /// Publishes a sample of one process, the group "editor" unless a test says otherwise.
    void takeSample(double pressure = 10.0, const std::string& command = "/usr/bin/editor",
                    double memoryMB = 1024.0) {
        ProcessSample row = processRow(700, command, 30.0, memoryMB);
        SystemSnapshot snapshot;
        snapshot.memory = {.totalGB = 16.0, .usedGB = 8.0, .freeGB = 8.0, .pressure = pressure};
        snapshot.disk = {.totalGB = 500.0, .freeGB = 100.0};
        snapshot.cpuPercent = 12.0;
        snapshot.topProcesses = {row};
        snapshot.appImpacts = listedAppImpacts({row}, {}, {});
        sample.setLatestProcesses({row}, {0});
        sample.setSnapshot(std::move(snapshot));
    }

    std::optional<DiagnosticsFacts> facts() {
        if (!sample.snapshot()) {
            return std::nullopt;
        }
        return DiagnosticsFacts{.snapshot = *sample.snapshot(),
                                .settings = settings.values(),
                                .sessionInsights = {},
                                .remoteHealth = remote.scan.state().remoteHealth,
                                .openAIKeySaved = advisor->provider.state().openAIKeySaved,
                                .aiInsight = advisor->provider.state().aiInsight,
                                .aiActions = advisor->suggestions.aiActions(),
                                .aiTrustRecords = advisor->trust.aiTrustRecords(),
                                .activityLog = log.activityLog()};
    }

    /// The events as "title: detail", oldest first.
    std::vector<std::string> events() const {
        std::vector<std::string> result;
        for (const ActivityEvent& event : log.activityLog()) {
            result.insert(result.begin(), event.title + ": " + event.detail);
        }
        return result;
    }

    /// Answers the question for the service with yes, or asks for an analysis without one, and runs
    /// the reading of the key, so that the exchange is the next job.
    void beginAnalysis() {
        advisor->provider.requestAIAnalysis();
        confirmations.confirmPending();
        runOneJob();
    }

    void runOneJob() {
        workQueue.run();
        mainQueue.drain();
    }

    const std::string& insight() const { return advisor->provider.state().aiInsight; }

    LatestSample sample{settings, mainQueue};
    FakeLocalActions localPorts;
    std::vector<std::string> copied;
    Actions actions{
        services,
        sample,
        {},
        [] {},
        {localPorts.ports(),
         {.openActivityMonitor = {},
          .storeOnPasteboard = [this](const std::string& text) { copied.push_back(text); }}}};
    RemoteMachines remote{services};
    std::shared_ptr<FakeReportFolder> folder = std::make_shared<FakeReportFolder>();
    Reports reports{
        services, actions.pasteboard, [this] { return facts(); }, {folder, atGreenwich}};
    FakeAdvisorPorts fakes;
    std::optional<Advisor> advisor;
};

}  // namespace tallowcrest
