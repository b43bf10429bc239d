// What the operations that quit, open and copy return, and that they record the same message.

#include <functional>
#include <string>
#include <vector>

#include "actions/desktop_actions.h"
#include "tests/actions/local_actions_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;

class ActionOutcomes;

struct OutcomeCase {
    const char* name;
    std::function<void(ActionOutcomes&)> prepare;
    std::function<Outcome(ActionOutcomes&)> operate;
    Outcome expected;
};

class ActionOutcomes : public LocalActionsFixture,
                       public ::testing::WithParamInterface<OutcomeCase> {
public:
    void selectEditor() {
        addProcess(700, "/usr/bin/editor");
        takeSample();
        selectFirst();
    }
    void selectInit() {
        addProcess(1, "/usr/lib/systemd/systemd");
        takeSample();
        selectFirst();
    }
    void endEditor() {
        endProcess(700);
        takeSample();
    }

    bool isViewerInstalled = true;
    bool isTailscaleInstalled = true;
    ExternalApplications applications{log, [this] { return isViewerInstalled; },
                                      [this] { return isTailscaleInstalled; }};
    ExternalApplications noApplications{log, {}, {}};
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

const std::vector<OutcomeCase>& cases() {
    static const std::vector<OutcomeCase> table{
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
        {"OpenTheProcessViewer", nothing, [](M& m) { return m.applications.openActivityMonitor(); },
         Outcome::done()},
        {"OpenAProcessViewerThatIsNotInstalled", [](M& m) { m.isViewerInstalled = false; },
         [](M& m) { return m.applications.openActivityMonitor(); },
         Outcome::failed("No activity monitor application is installed.")},
        {"OpenAProcessViewerWithoutADesktop", nothing,
         [](M& m) { return m.noApplications.openActivityMonitor(); },
         Outcome::failed("No activity monitor application is installed.")},
        {"OpenTailscale", nothing, [](M& m) { return m.applications.openTailscaleApp(); },
         Outcome::done()},
        {"OpenATailscaleThatIsNotInstalled", [](M& m) { m.isTailscaleInstalled = false; },
         [](M& m) { return m.applications.openTailscaleApp(); },
         Outcome::failed("No Tailscale application is installed.")},
        {"OpenTailscaleWithoutADesktop", nothing,
         [](M& m) { return m.noApplications.openTailscaleApp(); },
         Outcome::failed("No Tailscale application is installed.")},
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
    if (!outcome.message.empty()) {
        expectRecorded(outcome.message);
    } else {
        EXPECT_EQ(log.lastAction(), lastAction);
        EXPECT_THAT(log.activityLog(), IsEmpty());
    }
    EXPECT_EQ(confirmations.pendingConfirmation().has_value(),
              outcome.kind == Outcome::Kind::asked);
}

INSTANTIATE_TEST_SUITE_P(All, ActionOutcomes, ::testing::ValuesIn(cases()),
                         [](const auto& each) { return each.param.name; });

}  // namespace
}  // namespace tallowcrest
