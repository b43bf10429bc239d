#pragma once

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
#include "remote/remote_scan.h"
#include "remote/tailnet.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/fake_tool_launcher.h"
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

    CommandSafetyPolicy::AllowedExecutables allowed{"/usr/bin/ssh"};
    FakeToolLauncher launcher;
    ToolRunner tools{allowed, launcher, jobs, log};
    std::vector<std::string> copied;
    Pasteboard pasteboard{log, [this](const std::string& text) { copied.push_back(text); }};
    Tailnet tailnet{services, {tools, locale, {}, {}}, pasteboard};
    RemoteScan scan{services, tailnet, tools};
    RemoteProfiles profiles{services};
    std::shared_ptr<FakeReportFolder> folder = std::make_shared<FakeReportFolder>();
    std::optional<std::string> publicKey;
    RemoteActions actions{with(tools, pasteboard)};
};

}  // namespace tallowcrest
