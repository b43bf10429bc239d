#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QAccessible>
#include <QMessageBox>

#include "actions/actions.h"
#include "actions/local_actions.h"
#include "advisor/advisor.h"
#include "integration/integration.h"
#include "presentation/shell/confirmation_dialog.h"
#include "presentation/shell/menu_bar_entries.h"
#include "presentation/shell/menu_bar_panel.h"
#include "presentation/shell/settings/settings_sheet.h"
#include "presentation/shell/setup_wizard.h"
#include "presentation/shell/update_dialog.h"
#include "presentation/words/dashboard_text.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_advisor_ports.h"
#include "tests/support/fake_disk_ports.h"
#include "tests/support/fake_installation_files.h"
#include "tests/support/fake_update_ports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// What outlives the window.
struct RigPorts {
    FakeAdvisorPorts advisor;
    FakeDiskPorts disk;
    FakeUpdates updates;
    std::shared_ptr<FakeInstallationFiles> files = std::make_shared<FakeInstallationFiles>();
};

/// A window over a machine of its own, and everything that operating a control can change.
class Rig final : public RigPorts, public WindowFixture {
public:
    using WindowFixture::machine;
    using WindowFixture::settle;
    using WindowFixture::showWithSample;
    using WindowFixture::window;

    Rig() {
        fillDisk();
        makeInstallable();
        machine.advisor = advisor.ports();
        updates.isUnderTest = true;  // no check by itself
        machine.updates = updates.ports();
        machine.openActivityMonitor = [this] {
            outside_.append(u"opened the activity monitor"_s);
            return true;
        };
        machine.storeOnPasteboard = [this](const std::string& copied) {
            outside_.append(u"copied "_s + dashboard_text::text(copied));
        };
    }
    void TestBody() override {}

    Actions& actions() { return machine.monitor().actions(); }
    /// What is walked: the window, unless a place opened something else.
    QWidget& walked() { return walked_ == nullptr ? window() : *walked_; }

    void openSettings(SettingsTabKind tab) {
        window().state().navigation.setSettingsTab(tab);
        window().state().navigation.setShowSettings(true);
        settle();
        walked_ = window().findChild<SettingsSheet*>();
    }
    void openSettingsWithKey() {
        Provider& provider = machine.monitor().advisor().provider;
        provider.setOpenAIKeyInput(SecretText("sk-mine"));
        provider.saveOpenAIKey();
        finishWork();
        openSettings(SettingsTabKind::ai);
    }
    void ask() {
        actions().local.requestPurge();
        settle();
        walked_ = window().findChild<ConfirmationDialog*>();
    }
    void openAbout() {
        window().findChild<QAction*>(u"menu.about"_s)->trigger();
        settle();
        walked_ = window().findChild<QMessageBox*>(u"about"_s);
    }
    void openWizard() {
        window().state().navigation.setShowSetupWizard(true);
        settle();
        walked_ = window().findChild<SetupWizard*>();
    }
    /// An offer with each button that there can be.
    void openOffer() {
        updates.feed(42, R"("releaseNotesURL": "https://notes.example/",)");
        checkForUpdates();
    }
    void openUpdateFailure() {
        updates.transport->answers.clear();
        checkForUpdates();
    }
    /// From then on background work stays pending, the download too.
    void beginDownload() {
        openOffer();
        walked_ = nullptr;
        machine.monitor().integration().updates.answer(0);
        keepWorkPending();
        settle();
    }
    void openPanel() {
        panel_ = std::make_unique<MenuBarPanel>(machine.monitor(),
                                                menuBarEntries(machine.monitor(), window()));
        panel_->toggleAt({10, 10});
        settle();
        walked_ = panel_.get();
    }

    /// Runs all background work, also what follows from it.
    void finishWork();
    /// From now on background work stays pending.
    void keepWorkPending() { finishesWork_ = false; }

    /// The controls that assistive technology finds, in their order. Menus are Qt's own.
    std::vector<QAccessibleInterface*> controls();
    /// Everything that an operation can change, but the focus.
    std::string facts();

private:
    void checkForUpdates() {
        machine.monitor().integration().updates.checkForUpdates();
        finishWork();
        walked_ = window().findChild<UpdateDialog*>();
    }
    void makeInstallable();
    /// Old caches, large personal files and a folder to measure.
    void fillDisk();
    static void collect(QAccessibleInterface& from, std::vector<QAccessibleInterface*>& found);
    static void addShown(const QWidget& within, QStringList& facts);

    std::unique_ptr<MenuBarPanel> panel_;
    QWidget* walked_ = nullptr;
    QStringList outside_;
    bool finishesWork_ = true;
};

}  // namespace tallowcrest
