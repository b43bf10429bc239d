#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QAccessible>
#include <QMessageBox>

#include "actions/actions.h"
#include "actions/local_actions.h"
#include "presentation/shell/confirmation_dialog.h"
#include "presentation/shell/menu_bar_entries.h"
#include "presentation/shell/menu_bar_panel.h"
#include "presentation/shell/settings/settings_sheet.h"
#include "presentation/words/dashboard_text.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_disk_ports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// Outlives the window.
struct RigDisk {
    FakeDiskPorts disk;
};

/// A window over a machine of its own, and everything that operating a control can change.
class Rig final : public RigDisk, public WindowFixture {
public:
    using WindowFixture::machine;
    using WindowFixture::settle;
    using WindowFixture::showWithSample;
    using WindowFixture::window;

    Rig() {
        fillDisk();
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
