#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/actions/local_actions_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* blocked = "Blocked an invalid process termination request.";
using Termination = TerminationResult::Kind;

class QuitProcess : public LocalActionsFixture {
protected:
    void requestQuitOf(std::int64_t pid, const std::string& command) {
        addProcess(pid, command);
        takeSample();
        selectFirst();
        actions.requestQuitSelectedProcess();
    }
};

TEST_F(QuitProcess, WithoutATargetIsRefused) {
    addProcess(700, "/usr/bin/editor");
    takeSample();
    actions.requestQuitSelectedProcess();
    expectRecorded("Select a process first.");
    EXPECT_FALSE(confirmations.pendingConfirmation());
}

TEST_F(QuitProcess, AsksForConfirmationFirst) {
    requestQuitOf(700, "/usr/bin/editor");
    EXPECT_EQ(pending().title, "Quit editor?");
    EXPECT_EQ(pending().message,
              "Tallowcrest will send TERM to PID 700. Unsaved work may be lost if the app cannot "
              "close cleanly.");
    EXPECT_EQ(pending().confirmTitle, "Quit Process");
    EXPECT_EQ(pending().kind, "local_quit_process");
    EXPECT_EQ(pending().hostName, std::nullopt);
    EXPECT_EQ(pending().pid, 700);
    EXPECT_THAT(confirmations.targets().paths, ElementsAre("/usr/bin/editor"));
    EXPECT_EQ(review.optimizeStep(),
              "3. Confirm the quit action for editor, or cancel and keep reviewing.");
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
    EXPECT_EQ(refreshes, 0);
}

TEST_F(QuitProcess, EachRequestHasItsOwnIdentifier) {
    requestQuitOf(700, "/usr/bin/editor");
    const UUID first = pending().id;
    actions.requestQuitSelectedProcess();
    EXPECT_NE(pending().id, first);
}

TEST_F(QuitProcess, ConfirmedSendsTermOnceAndTakesASample) {
    requestQuitOf(700, "/usr/bin/editor");
    const std::string step = review.optimizeStep();
    confirm();
    confirm();
    EXPECT_THAT(ports.processes->signalled,
                ElementsAre(FakeProcessControl::Signalled{700, firstStartTime}));
    expectRecorded("Asked process 700 to quit.");
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(review.optimizeStep(), step);
    EXPECT_EQ(review.selectedPID(), 700);
}

TEST_F(QuitProcess, CancelledSendsNothing) {
    requestQuitOf(700, "/usr/bin/editor");
    const std::string step = review.optimizeStep();
    confirmations.cancelPending();
    confirm();
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
    expectRecorded("Canceled: Quit editor?.");
    EXPECT_EQ(review.optimizeStep(), step);
}

TEST_F(QuitProcess, RefusesProtectedProcesses) {
    struct Case {
        std::int64_t pid;
        const char* command;
        const char* name;
    };
    for (const Case& each :
         {Case{1, "/usr/lib/systemd/systemd", "systemd"}, Case{2, "[kthreadd]", "[kthreadd]"},
          Case{ownPID, "/opt/t", "t"}, Case{300, "/opt/Finder", "Finder"},
          Case{301, "/usr/libexec/helper", "helper"}, Case{302, "/System/helper", "helper"},
          Case{303, "/usr/bin/docker", "docker"}}) {
        settings.set(&Settings::protectedAppNames, {"Docker"});
        rows.clear();
        requestQuitOf(each.pid, each.command);
        expectRecorded(std::string("Refused to quit protected process ") + each.name + ".");
        EXPECT_FALSE(confirmations.pendingConfirmation()) << each.command;
    }
    EXPECT_THAT(ports.processes->held, IsEmpty());
}

TEST_F(QuitProcess, AProcessProtectedAfterTheRequestIsStillQuit) {
    requestQuitOf(700, "/usr/bin/editor");
    actions.toggleNeverQuit("editor");
    confirm();
    expectRecorded("Asked process 700 to quit.");
}

TEST_F(QuitProcess, AProcessThatLeftTheListIsNamedByItsPid) {
    addProcess(700, "/usr/bin/editor");
    takeSample();
    selectFirst();
    rows.clear();
    takeSample();
    actions.requestQuitSelectedProcess();
    EXPECT_EQ(pending().title, "Quit process 700?");
    // The path of the process that was reviewed.
    EXPECT_THAT(confirmations.targets().paths, ElementsAre("/usr/bin/editor"));
    EXPECT_EQ(review.optimizeStep(),
              "3. Confirm the quit action for process 700, or cancel and keep reviewing.");
    confirm();
    expectRecorded("Asked process 700 to quit.");
}

TEST_F(QuitProcess, AProcessThatHasEndedIsRecordedAsNotQuit) {
    requestQuitOf(700, "/usr/bin/editor");
    endProcess(700);
    confirm();
    expectRecorded("Could not quit process 700. It may be protected.");
    EXPECT_EQ(refreshes, 1);
}

TEST_F(QuitProcess, APidReusedAfterTheRequestIsNotSignalled) {
    requestQuitOf(700, "/usr/bin/editor");
    reusePid(700);
    confirm();
    expectRecorded(blocked);
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
    EXPECT_EQ(refreshes, 0);
}

TEST_F(QuitProcess, APidReusedAfterTheSelectionIsNotSignalled) {
    addProcess(700, "/usr/bin/editor");
    takeSample();
    selectFirst();
    reusePid(700);
    rows.front().command = "/usr/bin/backup";
    rows.front().startTime = firstStartTime + 1;
    takeSample();
    actions.requestQuitSelectedProcess();
    // The new process is neither named nor is its path shown: it was never reviewed.
    EXPECT_EQ(pending().title, "Quit process 700?");
    EXPECT_THAT(confirmations.targets().paths, ElementsAre("/usr/bin/editor"));
    confirm();
    expectRecorded(blocked);
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
}

TEST_F(QuitProcess, APidUnusedAtTheRequestIsNotSignalledLater) {
    addProcess(700, "/usr/bin/editor");
    takeSample();
    selectFirst();
    endProcess(700);
    takeSample();
    actions.requestQuitSelectedProcess();
    reusePid(700);
    confirm();
    expectRecorded(blocked);
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
}

TEST_F(QuitProcess, AProcessThatIsGoneAndNeverHadAStartTimeIsNotSignalled) {
    for (const char* command : {"/usr/bin/editor", ""}) {
        addProcess(700, command).startTime = 0;
        takeSample();
        selectFirst();
        rows.clear();
        takeSample();
        reusePid(700);
        actions.requestQuitSelectedProcess();
        EXPECT_EQ(confirmations.targets().paths, *command == '\0'
                                                     ? std::vector<std::string>()
                                                     : std::vector<std::string>{command});
        confirm();
        expectRecorded(blocked);
        EXPECT_THAT(ports.processes->signalled, IsEmpty());
        rows.clear();
        log.clearActivityLog();
    }
}

TEST_F(QuitProcess, ASampleDoesNotChangeThePendingRequest) {
    requestQuitOf(700, "/usr/bin/editor");
    const ConfirmationRequest asked = pending();
    addProcess(800, "/usr/bin/other");
    takeSample();
    mainQueue.drain();
    EXPECT_EQ(pending(), asked);
    confirm();
    EXPECT_THAT(ports.processes->signalled, SizeIs(1));
}

TEST_F(QuitProcess, AnotherSelectionDoesNotChangeThePendingRequest) {
    requestQuitOf(700, "/usr/bin/editor");
    review.selectProcess(addProcess(800, "/usr/bin/other"));
    confirm();
    EXPECT_THAT(ports.processes->signalled,
                ElementsAre(FakeProcessControl::Signalled{700, firstStartTime}));
}

TEST_F(QuitProcess, AReplacedRequestSignalsOnlyTheNewTarget) {
    requestQuitOf(700, "/usr/bin/editor");
    review.selectProcess(addProcess(800, "/usr/bin/other"));
    takeSample();
    actions.requestQuitSelectedProcess();
    confirm();
    confirm();
    EXPECT_THAT(ports.processes->signalled,
                ElementsAre(FakeProcessControl::Signalled{800, firstStartTime}));
}

TEST_F(QuitProcess, TheProcessIsReleasedWhenItsRequestIsAnsweredOrReplaced) {
    requestQuitOf(700, "/usr/bin/editor");
    EXPECT_EQ(ports.processes->heldNow(), 1);
    actions.requestQuitSelectedProcess();
    EXPECT_EQ(ports.processes->heldNow(), 1) << "by the second request";
    actions.requestPurge();
    EXPECT_EQ(ports.processes->heldNow(), 0) << "replaced";
    actions.requestQuitSelectedProcess();
    confirmations.cancelPending();
    EXPECT_EQ(ports.processes->heldNow(), 0) << "cancelled";
    actions.requestQuitSelectedProcess();
    confirm();
    EXPECT_THAT(ports.processes->signalled, SizeIs(1));
    EXPECT_EQ(ports.processes->heldNow(), 0) << "confirmed";
}

TEST_F(QuitProcess, ARequestWithoutAReviewIsBlocked) {
    addProcess(700, "/usr/bin/editor");
    confirmations.requestConfirmation(
        {UUID::random(), "Quit editor?", "", "Quit Process", "local_quit_process", {}, 700});
    confirm();
    expectRecorded(blocked);
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
}

TEST_F(QuitProcess, ARequestThatReplacesTheReviewedOneIsBlocked) {
    requestQuitOf(700, "/usr/bin/editor");
    addProcess(800, "/usr/bin/other");
    confirmations.requestConfirmation(
        {UUID::random(), "Quit other?", "", "Quit Process", "local_quit_process", {}, 800});
    confirm();
    expectRecorded(blocked);
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
}

TEST_F(QuitProcess, ARequestWithoutAPidDoesNothing) {
    confirmations.requestConfirmation(
        {UUID::random(), "Quit?", "", "Quit Process", "local_quit_process", {}, {}});
    confirm();
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
}

TEST_F(QuitProcess, InvalidPidsNeverReachThePort) {
    for (const std::int64_t pid :
         {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, std::int64_t{-700},
          std::int64_t{2147483648}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        rows.clear();
        ProcessSample row;
        row.pid = pid;
        row.command = "/usr/bin/odd";
        rows.push_back(row);
        takeSample();
        selectFirst();
        // Pid 1 is protected, but without a row the request is accepted.
        rows.clear();
        takeSample();
        actions.requestQuitSelectedProcess();
        ASSERT_TRUE(confirmations.pendingConfirmation()) << pid;
        confirm();
        expectRecorded(blocked);
    }
    EXPECT_THAT(ports.processes->held, IsEmpty());
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
}

TEST_F(QuitProcess, EveryOutcomeHasItsMessage) {
    struct Case {
        TerminationResult result;
        Outcome::Kind outcome;
        const char* message;
        int refreshes;
    };
    using enum Outcome::Kind;
    const Case cases[] = {
        {{Termination::asked, {}}, done, "Asked process 700 to quit.", 1},
        {{Termination::refused, {}}, failed, "Could not quit process 700. It may be protected.", 1},
        {{Termination::failed, "Too many open files"},
         failed,
         "Could not quit process 700: Too many open files",
         0},
        {{Termination::blocked, {}}, refused, blocked, 0},
    };
    for (const Case& each : cases) {
        rows.clear();
        refreshes = 0;
        ports.processes->results[700] = each.result;
        requestQuitOf(700, "/usr/bin/editor");
        EXPECT_EQ(confirmations.confirmPending(), (Outcome{each.outcome, each.message}));
        expectRecorded(each.message);
        EXPECT_EQ(refreshes, each.refreshes) << each.message;
    }
}

TEST_F(QuitProcess, AnEmptyCommandGivesAnEmptyName) {
    requestQuitOf(700, "");
    EXPECT_EQ(pending().title, "Quit ?");
}

}  // namespace
}  // namespace tallowcrest
