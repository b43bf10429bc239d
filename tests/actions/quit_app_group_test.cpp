#include <string>
#include <vector>

#include "tests/actions/local_actions_fixture.h"

namespace tallowcrest {
namespace {

using Termination = TerminationResult::Kind;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Signalled = FakeProcessControl::Signalled;

class QuitAppGroup : public LocalActionsFixture {
protected:
    void addFirefox() {
        addProcess(700, "/opt/firefox/firefox");
        addProcess(701, "/opt/firefox/firefox-content");
        addProcess(702, "/opt/firefox/firefox");
        addProcess(800, "/usr/bin/editor");
        takeSample();
    }

    void requestQuitOfFirefox() {
        addFirefox();
        selectFirst();
        actions.requestQuitSelectedApp();
    }
};

TEST_F(QuitAppGroup, WithoutAnyGroupIsRefused) {
    actions.requestQuitSelectedApp();
    expectRecorded("Select an app group first.");
    takeSample();
    actions.requestQuitSelectedApp();
    EXPECT_THAT(log.activityLog(), SizeIs(2));
    EXPECT_FALSE(confirmations.pendingConfirmation());
}

TEST_F(QuitAppGroup, AsksForConfirmationFirst) {
    requestQuitOfFirefox();
    EXPECT_EQ(pending().title, "Quit Firefox?");
    EXPECT_EQ(pending().message,
              "Tallowcrest will ask Firefox to quit gracefully, then may send TERM to visible "
              "helper processes if needed. Review unsaved work first.");
    EXPECT_EQ(pending().confirmTitle, "Quit App Group");
    EXPECT_EQ(pending().kind, "local_quit_app");
    EXPECT_EQ(pending().hostName, "Firefox");
    EXPECT_EQ(pending().pid, std::nullopt);
    EXPECT_THAT(confirmations.targets().paths,
                ElementsAre("/opt/firefox/firefox", "/opt/firefox/firefox-content"));
    EXPECT_THAT(confirmations.targets().pids, ElementsAre(700, 701, 702));
    EXPECT_EQ(review.optimizeStep(),
              "3. Confirm the app-group quit for Firefox, or cancel and keep reviewing.");
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(QuitAppGroup, WithoutASelectionTheHeaviestGroupIsTheTarget) {
    addFirefox();
    actions.requestQuitSelectedApp();
    EXPECT_EQ(pending().hostName, "Firefox");
}

TEST_F(QuitAppGroup, AGracefulQuitSendsNoTerm) {
    ports.gracefulQuit->succeeds = true;
    requestQuitOfFirefox();
    confirm();
    EXPECT_THAT(ports.gracefulQuit->names, ElementsAre("Firefox"));
    EXPECT_THAT(ports.gracefulQuit->lastMembers, SizeIs(3));
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
    expectRecorded("Asked Firefox to quit gracefully.");
    EXPECT_EQ(refreshes, 1);
}

TEST_F(QuitAppGroup, AFailedGracefulQuitSendsTermToEveryVisibleMemberInListOrder) {
    requestQuitOfFirefox();
    confirm();
    EXPECT_THAT(ports.gracefulQuit->names, ElementsAre("Firefox"));
    EXPECT_THAT(ports.processes->signalled,
                ElementsAre(Signalled{700, firstStartTime}, Signalled{701, firstStartTime},
                            Signalled{702, firstStartTime}));
    expectRecorded("Asked Firefox's visible processes to quit.");
    EXPECT_EQ(refreshes, 1);
}

TEST_F(QuitAppGroup, AsksTheApplicationInTheBackground) {
    requestQuitOfFirefox();
    const std::size_t events = log.activityLog().size();
    confirmations.confirmPending();
    ASSERT_EQ(workQueue.pendingCount(), 1U);
    EXPECT_EQ(workQueue.laneOf(0), Lane::actions);
    EXPECT_THAT(ports.gracefulQuit->names, IsEmpty());
    EXPECT_THAT(log.activityLog(), SizeIs(events));
    confirmations.confirmPending();
    EXPECT_EQ(workQueue.pendingCount(), 1U);
}

TEST_F(QuitAppGroup, ASyntheticGroupGetsTermWithoutBeingAsked) {
    struct Case {
        const char* group;
        const char* command;
    };
    for (const Case& each :
         {Case{"Python", "/usr/bin/python3"}, Case{"Node.js", "/usr/bin/node"},
          Case{"Electron Apps", "/opt/electron"}, Case{"Developer Tools", "/usr/bin/clang"}}) {
        rows.clear();
        ports.processes->signalled.clear();
        addProcess(900, each.command);
        takeSample();
        selectFirst();
        actions.requestQuitSelectedApp();
        EXPECT_EQ(pending().hostName, each.group);
        confirm();
        EXPECT_THAT(ports.processes->signalled, ElementsAre(Signalled{900, firstStartTime}));
        expectRecorded(std::string("Asked ") + each.group + "'s visible processes to quit.");
    }
    EXPECT_THAT(ports.gracefulQuit->names, IsEmpty());
}

TEST_F(QuitAppGroup, ANeverQuitGroupIsRefused) {
    settings.set(&Settings::protectedAppNames, {"Firefox"});
    requestQuitOfFirefox();
    expectRecorded("Refused to quit protected app group Firefox.");
    EXPECT_FALSE(confirmations.pendingConfirmation());
}

TEST_F(QuitAppGroup, AGroupOfProtectedMembersIsRefused) {
    addProcess(1, "/usr/lib/systemd/systemd");
    addProcess(600, "/usr/lib/systemd/systemd");
    takeSample();
    selectFirst();
    actions.requestQuitSelectedApp();
    expectRecorded("No visible processes found for systemd.");
    EXPECT_FALSE(confirmations.pendingConfirmation());
}

TEST_F(QuitAppGroup, AGroupThatIsGoneIsRefused) {
    addFirefox();
    selectFirst();
    rows.clear();
    takeSample();
    actions.requestQuitSelectedApp();
    expectRecorded("No visible processes found for Firefox.");
}

TEST_F(QuitAppGroup, OwnAndProtectedMembersAreNotAskedOrSignalled) {
    addProcess(700, "/opt/firefox/firefox");
    addProcess(ownPID, "/opt/firefox/firefox");
    addProcess(701, "/usr/libexec/firefox-helper");
    takeSample();
    selectFirst();
    actions.requestQuitSelectedApp();
    confirm();
    EXPECT_THAT(ports.processes->signalled, ElementsAre(Signalled{700, firstStartTime}));
    EXPECT_THAT(ports.gracefulQuit->lastMembers, SizeIs(1));
}

TEST_F(QuitAppGroup, MembersAreCollectedAgainAtTheConfirmation) {
    requestQuitOfFirefox();
    endProcess(700);
    addProcess(703, "/opt/firefox/firefox");
    takeSample();
    confirm();
    EXPECT_THAT(ports.processes->signalled,
                ElementsAre(Signalled{701, firstStartTime}, Signalled{702, firstStartTime},
                            Signalled{703, firstStartTime}));
}

TEST_F(QuitAppGroup, PutOnNeverQuitBeforeTheConfirmationItGetsNoTerm) {
    requestQuitOfFirefox();
    actions.toggleNeverQuit("Firefox");
    confirm();
    // The group was confirmed by its name, so it is still asked, but it gets no TERM.
    EXPECT_THAT(ports.gracefulQuit->names, ElementsAre("Firefox"));
    EXPECT_THAT(ports.gracefulQuit->lastMembers, SizeIs(3));
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
    expectRecorded("Asked Firefox's visible processes to quit.");
}

TEST_F(QuitAppGroup, TakenOffNeverQuitWhileAskedItGetsNoTerm) {
    requestQuitOfFirefox();
    actions.toggleNeverQuit("Firefox");
    confirmations.confirmPending();
    actions.toggleNeverQuit("Firefox");
    finishWork();
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
}

TEST_F(QuitAppGroup, PutOnNeverQuitWhileAskedItGetsNoTerm) {
    requestQuitOfFirefox();
    confirmations.confirmPending();
    actions.toggleNeverQuit("Firefox");
    finishWork();
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
    expectRecorded("Asked Firefox's visible processes to quit.");
}

TEST_F(QuitAppGroup, AGroupThatIsBeingAskedIsNotAskedAgain) {
    requestQuitOfFirefox();
    confirmations.confirmPending();
    actions.requestQuitSelectedApp();
    confirmations.confirmPending();
    expectRecorded("Firefox is still being asked to quit.");
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    finishWork();
    EXPECT_THAT(ports.gracefulQuit->names, SizeIs(1));
    actions.requestQuitSelectedApp();
    confirm();
    EXPECT_THAT(ports.gracefulQuit->names, SizeIs(2));
}

TEST_F(QuitAppGroup, AGroupThatEndedBeforeTheConfirmationIsRecordedAsAsked) {
    requestQuitOfFirefox();
    rows.clear();
    takeSample();
    confirm();
    EXPECT_THAT(ports.processes->signalled, IsEmpty());
    expectRecorded("Asked Firefox's visible processes to quit.");
    EXPECT_EQ(refreshes, 1);
}

TEST_F(QuitAppGroup, AMemberWhosePidWasReusedIsNotSignalled) {
    requestQuitOfFirefox();
    confirmations.confirmPending();
    reusePid(701);
    endProcess(702);
    finishWork();
    EXPECT_THAT(ports.processes->signalled, ElementsAre(Signalled{700, firstStartTime}));
    expectRecorded("Asked Firefox's visible processes to quit.");
}

TEST_F(QuitAppGroup, MembersWithAStartTimeAreNotHeldWhileTheApplicationIsAsked) {
    requestQuitOfFirefox();
    confirmations.confirmPending();
    EXPECT_THAT(ports.processes->held, IsEmpty());
    finishWork();
    EXPECT_THAT(ports.processes->held, ElementsAre(700, 701, 702));
}

TEST_F(QuitAppGroup, WithoutStartTimesAMemberWhosePidWasReusedIsNotSignalled) {
    addFirefox();
    for (ProcessSample& row : rows) {
        row.startTime = 0;
    }
    takeSample();
    selectFirst();
    actions.requestQuitSelectedApp();
    confirmations.confirmPending();
    reusePid(701);
    endProcess(702);
    finishWork();
    EXPECT_THAT(ports.processes->signalled, ElementsAre(Signalled{700, firstStartTime}));
}

TEST_F(QuitAppGroup, InvalidPidsNeverReachThePort) {
    ConfirmationDesk desk(log, mainQueue);
    LocalActions lenient({servicesWith(desk), sample, review,
                          ProtectionPolicy{.ownPID = ownPID, .protectsLinuxSystem = false}, [] {},
                          ports.ports()});
    for (const std::int64_t pid : {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1},
                                   std::int64_t{-700}, std::int64_t{2147483648}}) {
        addProcess(pid, "/usr/bin/editor");
    }
    addProcess(700, "/usr/bin/editor");
    takeSample();
    selectFirst();
    lenient.requestQuitSelectedApp();
    desk.confirmPending();
    finishWork();
    EXPECT_THAT(ports.processes->held, ElementsAre(700));
    EXPECT_THAT(ports.processes->signalled, ElementsAre(Signalled{700, firstStartTime}));
}

TEST_F(QuitAppGroup, AFailureForOneMemberDoesNotStopTheOthers) {
    requestQuitOfFirefox();
    ports.processes->results[700] = {Termination::refused, {}};
    ports.processes->results[701] = {Termination::failed, "Too many open files"};
    confirm();
    EXPECT_THAT(ports.processes->signalled, ElementsAre(Signalled{702, firstStartTime}));
    expectRecorded("Asked Firefox's visible processes to quit.");
}

TEST_F(QuitAppGroup, AllTwentyMembersOfAGroupAreSignalled) {
    for (std::int64_t pid = 100; pid < 120; ++pid) {
        addProcess(pid, "/usr/bin/worker");
    }
    takeSample();
    selectFirst();
    actions.requestQuitSelectedApp();
    EXPECT_THAT(confirmations.targets().paths, ElementsAre("/usr/bin/worker"));
    confirm();
    EXPECT_THAT(ports.processes->signalled, SizeIs(20));
}

TEST_F(QuitAppGroup, NamesAreNotChanged) {
    for (const std::string& name : {std::string("say \"hi\" \\ now"), std::string("two\nlines"),
                                    std::string(10000, 'x'), std::string("<b>bold")}) {
        rows.clear();
        addProcess(900, "/opt/" + name);
        takeSample();
        selectFirst();
        actions.requestQuitSelectedApp();
        EXPECT_EQ(pending().hostName, name);
        confirm();
        ASSERT_FALSE(ports.gracefulQuit->names.empty());
        EXPECT_EQ(ports.gracefulQuit->names.back(), name);
        expectRecorded("Asked " + name + "'s visible processes to quit.");
    }
}

TEST_F(QuitAppGroup, ARequestWithoutAGroupDoesNothing) {
    confirmations.requestConfirmation(
        {UUID::random(), "Quit?", "", "Quit App Group", "local_quit_app", {}, {}});
    confirm();
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_THAT(ports.gracefulQuit->names, IsEmpty());
}

TEST_F(QuitAppGroup, WithoutADesktopOnlyTermIsSent) {
    ConfirmationDesk desk(log, mainQueue);
    LocalActions headless({servicesWith(desk),
                           sample,
                           review,
                           policy,
                           [] {},
                           {ports.processes, nullptr, ports.cachePurge}});
    addFirefox();
    selectFirst();
    headless.requestQuitSelectedApp();
    desk.confirmPending();
    EXPECT_EQ(workQueue.pendingCount(), 0U);
    EXPECT_THAT(ports.processes->signalled, SizeIs(3));
}

TEST_F(QuitAppGroup, AnAnswerAfterDestructionIsDropped) {
    for (const bool hasBegun : {true, false}) {
        ConfirmationDesk desk(log, mainQueue);
        ports.gracefulQuit->names.clear();
        rows.clear();
        {
            LocalActions shortLived(
                {servicesWith(desk), sample, review, policy, [] {}, ports.ports()});
            addFirefox();
            selectFirst();
            shortLived.requestQuitSelectedApp();
            desk.confirmPending();
            if (hasBegun) {
                workQueue.run();
            }
        }
        finishWork();
        EXPECT_THAT(ports.gracefulQuit->names, SizeIs(hasBegun ? 1 : 0));
        EXPECT_THAT(ports.processes->signalled, IsEmpty());
    }
}

}  // namespace
}  // namespace tallowcrest
