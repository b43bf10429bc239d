// What each operation on this machine returns, and that it records the same words.

#include <functional>
#include <string>
#include <vector>

#include "actions/external_applications.h"
#include "actions/pasteboard.h"
#include "tests/actions/local_actions_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;

class ActionOutcomes;

struct Case {
    const char* name;
    std::function<void(ActionOutcomes&)> prepare;
    std::function<Outcome(ActionOutcomes&)> operate;
    Outcome expected;
    /// Where the words are the last action alone and no event.
    bool isEvent = true;
};

class ActionOutcomes : public LocalActionsFixture, public ::testing::WithParamInterface<Case> {
public:
    void sampleEditor(double pressure = 10.0) {
        addProcess(700, "/usr/bin/editor");
        takeSample(pressure);
    }
    void sampleInit(double pressure = 10.0) {
        addProcess(1, "/usr/lib/systemd/systemd");
        takeSample(pressure);
    }
    void selectEditor() {
        sampleEditor();
        selectFirst();
    }
    void selectInit() {
        sampleInit();
        selectFirst();
    }
    void endEditor() {
        endProcess(700);
        takeSample();
    }

    bool isViewerInstalled = true;
    ExternalApplications applications{log, [this] { return isViewerInstalled; }};
    ExternalApplications noApplications{log, {}};
    Pasteboard pasteboard{log, [](const std::string& /*text*/) {}};
    Pasteboard noPasteboard{log, {}};
};

using M = ActionOutcomes;

void nothing(M& /*machine*/) {}

Outcome quitProcess(M& m) {
    return m.actions.requestQuitSelectedProcess();
}
Outcome quitApp(M& m) {
    return m.actions.requestQuitSelectedApp();
}
Outcome optimize(M& m) {
    return m.actions.optimizeSafely();
}
Outcome toggle(M& m) {
    return m.actions.toggleNeverQuit("editor");
}
Outcome selectFirstRow(M& m) {
    return m.review.selectFirstProcess(m.rows);
}
Outcome selectTopProcess(M& m) {
    return m.review.selectTopProcess();
}
Outcome selectTopApp(M& m) {
    return m.review.selectTopApp();
}

const std::vector<Case>& cases() {
    static const std::vector<Case> table{
        {"QuitProcessWithoutATarget", nothing, quitProcess,
         Outcome::refused("Select a process first.")},
        {"QuitProcessThatIsProtected", &M::selectInit, quitProcess,
         Outcome::refused("Refused to quit protected process systemd.")},
        {"QuitProcess", &M::selectEditor, quitProcess, Outcome::asked()},
        {"QuitProcessThatHasLeftTheTable",
         [](M& m) {
             m.selectEditor();
             m.endEditor();
         },
         quitProcess, Outcome::asked()},
        {"QuitAppWithoutATarget", nothing, quitApp, Outcome::refused("Select an app group first.")},
        {"QuitAppOnTheNeverQuitList",
         [](M& m) {
             m.settings.set(&Settings::protectedAppNames, {"editor"});
             m.selectEditor();
         },
         quitApp, Outcome::refused("Refused to quit protected app group editor.")},
        {"QuitAppThatIsGone",
         [](M& m) {
             m.selectEditor();
             m.endEditor();
         },
         quitApp, Outcome::refused("No visible processes found for editor.")},
        {"QuitApp", &M::selectEditor, quitApp, Outcome::asked()},
        {"Purge", nothing, [](M& m) { return m.actions.requestPurge(); }, Outcome::asked()},
        {"OptimizeWithoutASample", nothing, optimize,
         Outcome::refused("No sample is available yet.")},
        {"OptimizeWithPurgeAndTarget", [](M& m) { m.sampleEditor(95.0); }, optimize,
         Outcome::asked("Optimized safely: purged caches and selected editor for review.")},
        {"OptimizeWithPurgeAlone", [](M& m) { m.sampleInit(95.0); }, optimize,
         Outcome::asked("Optimized safely: purged caches. No safe app target was found.")},
        {"OptimizeWithTargetAlone", [](M& m) { m.sampleEditor(); }, optimize,
         Outcome::done("Optimize Safely selected editor. Review it before quitting anything.")},
        {"OptimizeWithNothingToDo", [](M& m) { m.sampleInit(); }, optimize,
         Outcome::done("Optimize Safely found no safe action needed right now.")},
        {"PutOnTheNeverQuitList", nothing, toggle, Outcome::done("editor added to Never Quit.")},
        {"TakeOffTheNeverQuitList",
         [](M& m) { m.settings.set(&Settings::protectedAppNames, {"editor"}); }, toggle,
         Outcome::done("editor removed from Never Quit.")},
        {"SelectFirstOfNone", nothing, selectFirstRow,
         Outcome::refused("No process is available to select."), false},
        {"SelectFirst", [](M& m) { m.sampleEditor(); }, selectFirstRow,
         Outcome::done("Selected editor from CPU + Memory Processes. No action has run yet."),
         false},
        {"SelectTopProcessWithoutASample", nothing, selectTopProcess,
         Outcome::refused("No process sample is available yet.")},
        {"SelectTopProcessThatIsProtected", [](M& m) { m.sampleInit(); }, selectTopProcess,
         Outcome::refused(
             "Top process is protected: systemd. Select another process to optimize.")},
        {"SelectTopProcess", [](M& m) { m.sampleEditor(); }, selectTopProcess,
         Outcome::done("Selected editor, currently the heaviest process.")},
        {"SelectTopAppWithoutASample", nothing, selectTopApp,
         Outcome::refused("No app impact sample is available yet.")},
        {"SelectTopAppThatIsProtected",
         [](M& m) {
             SystemSnapshot snapshot;
             m.sampleInit();
             snapshot.appImpacts = {{"systemd", 1, 10.0, 100.0, 1, 1}};
             m.sample.setSnapshot(std::move(snapshot));
         },
         selectTopApp,
         Outcome::refused(
             "Top app includes protected system processes. Select a safer app group.")},
        {"SelectTopApp", [](M& m) { m.sampleEditor(); }, selectTopApp,
         Outcome::done("Selected the heaviest process inside editor.")},
        {"OpenTheProcessViewer", nothing, [](M& m) { return m.applications.openActivityMonitor(); },
         Outcome::done()},
        {"OpenAProcessViewerThatIsNotInstalled", [](M& m) { m.isViewerInstalled = false; },
         [](M& m) { return m.applications.openActivityMonitor(); },
         Outcome::failed("No activity monitor application is installed.")},
        {"OpenAProcessViewerWithoutADesktop", nothing,
         [](M& m) { return m.noApplications.openActivityMonitor(); },
         Outcome::failed("No activity monitor application is installed.")},
        {"Copy", nothing, [](M& m) { return m.pasteboard.copyToPasteboard("text", "Copied."); },
         Outcome::done("Copied.")},
        {"CopyWithoutAClipboard", nothing,
         [](M& m) { return m.noPasteboard.copyToPasteboard("text", "Copied."); },
         Outcome::failed("There is no clipboard here.")},
    };
    return table;
}

TEST_P(ActionOutcomes, AreReturnedAndRecorded) {
    GetParam().prepare(*this);
    log.clearActivityLog();
    const std::string lastAction = log.lastAction();
    const Outcome outcome = GetParam().operate(*this);
    EXPECT_EQ(outcome.kind, GetParam().expected.kind);
    EXPECT_EQ(outcome.message, GetParam().expected.message);
    if (!outcome.message.empty() && GetParam().isEvent) {
        expectRecorded(outcome.message);
    } else {
        EXPECT_EQ(log.lastAction(), outcome.message.empty() ? lastAction : outcome.message);
        EXPECT_THAT(log.activityLog(), IsEmpty());
    }
    EXPECT_EQ(confirmations.pendingConfirmation().has_value(),
              outcome.kind == Outcome::Kind::asked);
}

INSTANTIATE_TEST_SUITE_P(EveryOne, ActionOutcomes, ::testing::ValuesIn(cases()),
                         [](const auto& each) { return each.param.name; });

}  // namespace
}  // namespace tallowcrest
