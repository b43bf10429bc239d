#include "presentation/screens/remote_macs/remote_health_lines.h"

#include <algorithm>

#include <gmock/gmock.h>

#include "tests/presentation/scoped_locale.h"
#include "tests/presentation/screens/remote_macs/remote_machine.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::remote_health_lines {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Status = RemoteHealth::Status;

constexpr std::array everyStatus{
    Status::reachable,    Status::noTailnetPath, Status::noAddress, Status::connectionBlocked,
    Status::hostKeyIssue, Status::authNeeded,    Status::unknown};

class RemoteHealthLinesTest : public testing::Test {
protected:
    const ScopedLocale locale{"en_US"};
    RemoteHealthFacts facts = reachableMachine();
    RemoteHealth& machine = facts.machine;
    RemoteProfile& profile = facts.profile;

    Row processRow(const RemoteProcess& process) {
        machine.topProcesses = {process};
        return processRows(facts).at(0);
    }
};

TEST_F(RemoteHealthLinesTest, AMachineThatIsNotReachableNeedsAttention) {
    for (const Status status : everyStatus) {
        machine.status = status;
        const Head shown = head(facts);
        EXPECT_EQ(shown.status.toStdString(), title(status));
        EXPECT_EQ(shown.needsAttention(), status != Status::reachable);
        EXPECT_EQ(shown.isReachable, status == Status::reachable);
        EXPECT_EQ(shown.statusIcon, status == Status::reachable
                                        ? u"checkmark.circle"_s
                                        : u"exclamationmark.triangle.fill"_s);
    }
}

TEST_F(RemoteHealthLinesTest, MemoryIsHighFromTheThresholdOn) {
    machine.memoryPercent = 79.9;
    EXPECT_FALSE(head(facts).needsAttention());
    machine.memoryPercent = 80.0;
    EXPECT_EQ(head(facts).memoryWord, u"High"_s);
    EXPECT_TRUE(head(facts).needsAttention());
    profile.warningThreshold = 81.0;
    EXPECT_EQ(head(facts).memoryWord, QString());
    // Unknown is not zero.
    profile.warningThreshold = 0.0;
    machine.memoryPercent.reset();
    EXPECT_FALSE(head(facts).needsAttention());
}

TEST_F(RemoteHealthLinesTest, SaturatedProcessorsNeedAttention) {
    machine.cpuPercent = 84.9;
    EXPECT_FALSE(head(facts).needsAttention());
    machine.cpuPercent = 85.0;
    EXPECT_EQ(head(facts).cpuWord, u"High"_s);
    EXPECT_TRUE(head(facts).needsAttention());
    EXPECT_TRUE(head(facts).spokenFigures.startsWith(u"CPU 85%, High, Memory "_s));
    machine.cpuPercent.reset();
    EXPECT_FALSE(head(facts).needsAttention());
}

TEST_F(RemoteHealthLinesTest, TheHeadNamesTheMachineAndItsFigures) {
    Head shown = head(facts);
    EXPECT_EQ(shown.name, u"studio-mac"_s);
    EXPECT_EQ(shown.host, QString());
    EXPECT_EQ(shown.cpu, u"CPU 12%"_s);
    EXPECT_EQ(shown.memory, u"Memory 41%"_s);
    EXPECT_EQ(shown.age, u"2 min ago"_s);
    EXPECT_EQ(shown.spokenName, u"studio-mac, Reachable"_s);
    EXPECT_EQ(shown.spokenFigures, u"CPU 12%, Memory 41%, 2 min ago"_s);

    profile.nickname = "Studio";
    machine.cpuPercent.reset();
    machine.memoryPercent = 91.0;
    shown = head(facts);
    EXPECT_EQ(shown.name, u"Studio"_s);
    EXPECT_EQ(shown.host, u"studio-mac"_s);
    EXPECT_EQ(shown.cpu, u"CPU –"_s);
    EXPECT_EQ(shown.spokenName, u"Studio, studio-mac, Reachable"_s);
    EXPECT_EQ(shown.spokenFigures, u"CPU unknown, Memory 91%, High, 2 min ago"_s);

    profile.nickname.clear();
    EXPECT_EQ(head(facts).name, u"studio-mac"_s);
    machine.hostName.clear();
    EXPECT_EQ(head(facts).name, u"100.64.0.7"_s);
}

TEST_F(RemoteHealthLinesTest, TheLinesOfTheDetailsHaveTheirWords) {
    profile.nickname = "Studio";
    profile.role = "Render box";
    EXPECT_EQ(profileLine(profile), u"Profile: Studio · Render box · Warn at 80%"_s);
    EXPECT_EQ(systemLine(machine), u"macOS 14.5"_s);
    EXPECT_EQ(topCPULine(machine), u"Top CPU: 92.1% /usr/local/bin/yes"_s);
    EXPECT_EQ(topMemoryLine(machine),
              u"Top Memory: 2048MB /Applications/Xcode.app/Contents/MacOS/Xcode"_s);
    EXPECT_EQ(
        recommendationLine(machine),
        u"Recommendation: Remote Mac looks healthy. No remote optimization action is needed."_s);
    EXPECT_EQ(setupHintLine(machine), u"SSH is configured and remote metrics are available."_s);
    profile.nickname.clear();
    profile.role.clear();
    EXPECT_EQ(profileLine(profile), u"Profile: Warn at 80%"_s);
    machine.isLinux = true;
    EXPECT_EQ(systemLine(machine), u"Linux 14.5"_s);
    for (const char* name : {"Debian GNU/Linux 12 (bookworm)", "Linux Mint 21.3", "Arch Linux"}) {
        machine.osVersion = name;
        EXPECT_EQ(systemLine(machine).toStdString(), name);
    }
    machine.isLinux = false;
    EXPECT_EQ(systemLine(machine), u"macOS Arch Linux"_s);
}

TEST_F(RemoteHealthLinesTest, WhatIsAbsentIsUnknown) {
    facts = unreachableMachine(Status::authNeeded);
    EXPECT_EQ(systemLine(machine), u"macOS unknown"_s);
    EXPECT_EQ(topCPULine(machine), u"Top CPU: unknown"_s);
    EXPECT_EQ(topMemoryLine(machine), u"Top Memory: unknown"_s);
    EXPECT_EQ(head(facts).spokenFigures, u"CPU unknown, Memory unknown, 2 min ago"_s);
    EXPECT_THAT(processRows(facts), IsEmpty());
    EXPECT_EQ(noRows(machine), QString());
    machine.status = Status::reachable;
    EXPECT_EQ(noRows(machine), u"The last sample named no process."_s);
}

TEST_F(RemoteHealthLinesTest, AProcessRowHasItsFiguresAndNamesItsButtons) {
    const Row row = processRows(facts).at(0);
    EXPECT_EQ(row.name, u"yes"_s);
    EXPECT_EQ(row.note, u"PID 700"_s);
    EXPECT_EQ(row.cpu, u"92.1% CPU"_s);
    EXPECT_EQ(row.memory, u"1,240 MB"_s);
    EXPECT_EQ(row.toolTip, u"/usr/local/bin/yes"_s);
    EXPECT_EQ(row.identifier, u"process-700"_s);
    EXPECT_EQ(row.copyName, u"Copy yes, PID 700"_s);
    EXPECT_EQ(row.actionName, u"Quit yes, PID 700"_s);
    EXPECT_FALSE(row.isProtected);
}

TEST_F(RemoteHealthLinesTest, ProtectedProcessesSayWhyTheyCannotBeQuit) {
    for (const char* command :
         {"/sbin/launchd", "kernel_task", "/x/WindowServer", "loginwindow", "/Applications/Finder",
          "Dock", "SystemUIServer", "/System/x", "/usr/libexec/trustd"}) {
        const Row row = processRow({700, 1.0, 1.0, command});
        EXPECT_TRUE(row.isProtected) << command;
        EXPECT_FALSE(row.hasAction);
        EXPECT_EQ(row.note, u"PID 700 · Protected"_s);
        EXPECT_TRUE(row.actionDescription.startsWith(u"Protected: "_s));
    }
    EXPECT_FALSE(processRow({700, 1.0, 1.0, "/usr/lib/systemd/systemd-logind"}).isProtected);
    machine.isLinux = true;
    EXPECT_TRUE(processRow({700, 1.0, 1.0, "/usr/lib/systemd/systemd-logind"}).isProtected);
    EXPECT_FALSE(processRow({700, 1.0, 1.0, "/usr/bin/yes"}).isProtected);
    facts.neverQuit = {"yes"};
    const Row listed = processRow({700, 1.0, 1.0, "/usr/bin/yes"});
    EXPECT_TRUE(listed.isProtected);
    EXPECT_TRUE(listed.hasAction) << "it is refused with a message";
    EXPECT_EQ(listed.actionDescription, u"Protected: its app group is on the Never Quit list"_s);
}

TEST_F(RemoteHealthLinesTest, AnAppRowShowsWhetherItIsOnTheNeverQuitList) {
    machine.appImpacts = {{"Logic Pro", 3, 92.14, 1536.0, 700, 1}};
    Row row = appRows(facts).at(0);
    EXPECT_EQ(row.name, u"Logic Pro"_s);
    EXPECT_EQ(row.note, u"3 processes · 1.5 GB"_s);
    EXPECT_EQ(row.cpu, u"92.1% CPU"_s);
    EXPECT_EQ(row.copyName, u"Copy Logic Pro"_s);
    EXPECT_EQ(row.actionName, u"Never Quit Logic Pro"_s);
    EXPECT_FALSE(row.isProtected);
    const QString puts = row.actionDescription;
    facts.neverQuit = {"Logic Pro"};
    row = appRows(facts).at(0);
    EXPECT_TRUE(row.isProtected);
    EXPECT_NE(row.actionDescription, puts);
}

TEST_F(RemoteHealthLinesTest, HostileTextsAndFiguresAreBoundedAndOnOneLine) {
    const std::string hostile = "<b>x</b>\n\u202Efdp\u200B" + std::string(10'000, 'W');
    machine.hostName = machine.osVersion.emplace(hostile);
    machine.topCPUProcess = machine.topMemoryProcess = hostile;
    machine.recommendation = machine.setupHint = hostile;
    facts.lastResult = {Outcome::failed("Could not quit " + hostile), {1070.0}};
    profile.nickname = profile.role = hostile;
    machine.topProcesses = {{1, 1e300, -1e300, hostile}};
    machine.appImpacts = {{hostile, 1, 1e300, 1e300, {}, 0}};
    const Row process = processRows(facts).at(0);
    const Row app = appRows(facts).at(0);
    for (const QString& text : {head(facts).name,
                                head(facts).spokenName,
                                profileLine(profile),
                                systemLine(machine),
                                topCPULine(machine),
                                topMemoryLine(machine),
                                recommendationLine(machine),
                                setupHintLine(machine),
                                resultLine(facts),
                                process.name,
                                process.toolTip,
                                process.actionName,
                                process.identifier,
                                process.cpu,
                                process.memory,
                                app.name,
                                app.actionName,
                                app.note,
                                app.cpu,
                                app.identifier}) {
        EXPECT_LT(text.size(), 2'100) << text.left(40).toStdString();
        EXPECT_FALSE(text.contains(u'\n') || text.contains(QChar(0x202E)) ||
                     text.contains(QChar(0x200B)))
            << text.left(40).toStdString();
    }
    EXPECT_EQ(process.cpu, u"100,000.0% CPU"_s);
    EXPECT_EQ(process.memory, u"-100,000,000 MB"_s);
    EXPECT_LT(app.identifier.size(), 70);
}

TEST_F(RemoteHealthLinesTest, TheToolsHaveTheirWordsInTheirOrder) {
    std::vector<std::string> titles;
    for (const Tool& tool : tools()) {
        titles.emplace_back(tool.title);
    }
    EXPECT_THAT(titles, ElementsAre("Copy Ping", "Copy Port Test", "Copy Test", "Copy Host Key Fix",
                                    "Copy Key Install", "Inspect", "Remote Purge", "Remote Safe"));
}

TEST_F(RemoteHealthLinesTest, WithoutAnAddressTwoToolsAreDisabled) {
    for (const char* address : {"100.64.0.7", "no address"}) {
        machine.address = address;
        const bool hasAddress = machine.address != "no address";
        for (const Tool& tool : tools()) {
            const bool needsIt = tool.operation == RemoteOperation::copyHostKeyFix ||
                                 tool.operation == RemoteOperation::copyKeyInstall;
            EXPECT_EQ(isEnabled(tool.operation, machine), hasAddress || !needsIt) << tool.title;
        }
    }
}

TEST_F(RemoteHealthLinesTest, TheForemostToolsHelpWithTheStatus) {
    using enum RemoteOperation;
    EXPECT_THAT(foremostTools(Status::reachable), ElementsAre(remotePurge, remoteSafe));
    EXPECT_THAT(foremostTools(Status::hostKeyIssue), ElementsAre(copyTest, copyHostKeyFix));
    EXPECT_THAT(foremostTools(Status::authNeeded), ElementsAre(copyTest, copyKeyInstall));
    EXPECT_THAT(foremostTools(Status::connectionBlocked), ElementsAre(copyPortTest, copyTest));
    for (const Status status : {Status::noTailnetPath, Status::unknown}) {
        EXPECT_THAT(foremostTools(status), ElementsAre(copyPing, copyTest));
    }
    EXPECT_THAT(foremostTools(Status::noAddress), ElementsAre(inspect))
        << "each command would be refused";
}

TEST_F(RemoteHealthLinesTest, ADisabledToolSaysWhy) {
    for (const Tool& tool : tools()) {
        machine.address = "100.64.0.7";
        EXPECT_EQ(toolDescription(tool, machine).toStdString(), tool.description);
        machine.address = "no address";
        EXPECT_EQ(toolDescription(tool, machine).startsWith(u"Needs an address"_s),
                  !isEnabled(tool.operation, machine))
            << tool.title;
    }
}

TEST_F(RemoteHealthLinesTest, AMachineThatHasGoneOfflineSaysSoBesideItsAge) {
    EXPECT_EQ(head(facts).offline, QString());
    facts.isNowOffline = true;
    EXPECT_EQ(head(facts).offline, u"now offline"_s);
    EXPECT_EQ(head(facts).age, u"2 min ago"_s);
    EXPECT_EQ(head(facts).spokenFigures, u"CPU 12%, Memory 41%, 2 min ago, now offline"_s);
    EXPECT_FALSE(head(facts).needsAttention()) << "its last record is one of success";
}

TEST_F(RemoteHealthLinesTest, TheLastResultIsToldWithItsAge) {
    EXPECT_EQ(resultLine(facts), QString());
    facts.lastResult = {Outcome::done("Purged remote file caches on studio-mac."), {1070.0}};
    EXPECT_EQ(resultLine(facts),
              u"Last action: Purged remote file caches on studio-mac. · 1 min ago"_s);
}

}  // namespace
}  // namespace tallowcrest::remote_health_lines
