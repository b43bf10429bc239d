#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/desktop_actions.h"
#include "actions/tool_runner.h"
#include "core/activity_kinds.h"
#include "remote/remote_actions.h"
#include "remote/remote_profiles.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/remote_machines.h"
#include "tests/support/test_services.h"

namespace tallowcrest {

/// The actions on machines whose figures a test sets.
class RemoteActionsFixture : public ::testing::Test, public TestServices {
public:
    /// What a scan says when the tailnet has no Macs, as here: the sign that one was begun.
    static constexpr const char* scanBegan = "No online Tailscale Macs are available to scan.";

    static RemoteProcess process(std::int64_t pid, std::string command) {
        return {.pid = pid, .cpu = 50.0, .rssMB = 100.0, .command = std::move(command)};
    }

    static RemoteHealth machine() {
        return {.id = "nodekey:1",
                .hostName = "studio",
                .address = "100.64.0.7",
                .online = true,
                .status = RemoteHealth::Status::reachable,
                .cpuPercent = 10.0,
                .memoryPercent = 50.0,
                .topProcesses = {process(411, "/opt/Maya"), process(412, "/opt/Render")}};
    }

    /// Lets a scan end with these results, and forgets what it recorded.
    void finishScan(std::vector<RemoteHealth> results) {
        scan.finishRemoteScan(std::move(results));
        log.clearActivityLog();
    }

    void allowPurge() { profiles.updateRemoteProfile("studio", {.allowRemotePurge = true}); }

    /// What was recorded since the last call, oldest first. The last one is the last action.
    std::vector<std::string> recorded() {
        std::vector<std::string> details;
        for (const ActivityEvent& event : log.activityLog()) {
            EXPECT_EQ(event.kind, ActivityKind::action);
            details.insert(details.begin(), event.detail);
        }
        if (!details.empty()) {
            EXPECT_EQ(log.lastAction(), details.back());
        }
        log.clearActivityLog();
        return details;
    }

    /// The outcome of an operation, which recorded its message and nothing else.
    void expectRecorded(const Outcome& outcome, const Outcome& expected) {
        EXPECT_EQ(outcome, expected);
        EXPECT_THAT(recorded(), ::testing::ElementsAre(expected.message));
    }

    /// The kind of the pending request; empty without one.
    std::string pendingKind() const {
        const auto& pending = confirmations.pendingConfirmation();
        return pending ? pending->kind : "";
    }

    /// Confirms, and expects that this text is run over SSH in the lane of the remote actions.
    void expectConfirmedRuns(const char* text, std::chrono::milliseconds timeout) {
        EXPECT_EQ(confirmations.confirmPending(), Outcome::asked());
        ASSERT_EQ(workQueue.pendingCount(), 1U);
        EXPECT_EQ(workQueue.laneOf(0), Lane::remoteActions);
        finishWork();
        ASSERT_THAT(launcher.requests, ::testing::SizeIs(1));
        EXPECT_EQ(launcher.requests[0].path, "/usr/bin/ssh");
        EXPECT_THAT(launcher.requests[0].arguments,
                    ::testing::ElementsAre("-o", "BatchMode=yes", "-o", "ConnectTimeout=5",
                                           "owner@100.64.0.7", text));
        EXPECT_EQ(launcher.requests[0].timeout, timeout);
    }

    RemoteActions::Dependencies with(ToolRunner& runner, Pasteboard& board) {
        return {services,
                scan,
                profiles,
                runner,
                board,
                {.localPublicKey = [this] { return publicKey; },
                 .folder = folder,
                 .portTest = "nc -vz -w 5"}};
    }

    RemoteMachines remote{services};
    FakeToolLauncher& launcher = remote.launcher;
    ToolRunner& tools = remote.tools;
    RemoteScan& scan = remote.scan;
    std::vector<std::string> copied;
    Pasteboard pasteboard{log, [this](const std::string& text) { copied.push_back(text); }};
    RemoteProfiles profiles{services};
    std::shared_ptr<FakeReportFolder> folder = std::make_shared<FakeReportFolder>();
    std::optional<std::string> publicKey;
    RemoteActions actions{with(tools, pasteboard)};
};

}  // namespace tallowcrest
