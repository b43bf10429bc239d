#include <set>

#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

#include "actions/actions.h"
#include "presentation/words/dashboard_text.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class MenusTest : public WindowFixture {
protected:
    QAction& entry(const char* identifier) {
        return *window().findChild<QAction*>(QString::fromLatin1(identifier));
    }

    std::string pendingTitle() {
        const auto& pending = machine.monitor().confirmations().pendingConfirmation();
        return pending ? pending->title : "(none)";
    }
};

TEST_F(MenusTest, HaveTheseEntriesInThisOrder) {
    QStringList entries;
    std::set<QString> identifiers;
    EXPECT_EQ(window().menuBar()->objectName(), u"menu"_s);
    for (const QAction* menu : window().menuBar()->actions()) {
        EXPECT_FALSE(menu->menu()->objectName().isEmpty()) << menu->text().toStdString();
        entries.append(menu->text().remove(u'&') + u':');
        for (const QAction* action : menu->menu()->actions()) {
            if (!action->isSeparator()) {
                entries.append(action->objectName() + u'|' + action->text() + u'|' +
                               action->shortcut().toString(QKeySequence::PortableText));
                EXPECT_TRUE(identifiers.insert(action->objectName()).second);
            }
        }
    }
    EXPECT_EQ(entries.join(u'\n').toStdString(),
              "Tallowcrest:\n"
              "menu.about|About Tallowcrest|\n"
              "menu.check-for-updates|Check for Updates…|\n"
              "menu.settings|Settings...|Ctrl+,\n"
              "menu.refresh|Refresh|Ctrl+R\n"
              "menu.emergency-stop|Emergency Stop|Ctrl+.\n"
              "menu.resume-manual-mode|Resume Manual Mode|\n"
              "menu.quit|Quit Tallowcrest|Ctrl+Q\n"
              "File:\n"
              "menu.copy-report|Copy Report|Ctrl+Shift+C\n"
              "menu.export-diagnostics|Export Diagnostics...|Ctrl+E\n"
              "menu.export-setup-script|Export Remote SSH Setup Script...|\n"
              "menu.quit-selected-process|Quit Selected Process|Ctrl+Del\n"
              "menu.quit-selected-app|Quit Selected App Group|\n"
              "menu.install|Install to Applications|\n"
              "menu.enable-launch-at-login|Enable Launch at Login|\n"
              "menu.disable-launch-at-login|Disable Launch at Login|\n"
              "Go:\n"
              "menu.go.overview|Overview|Ctrl+1\n"
              "menu.go.load|Processes|Ctrl+2\n"
              "menu.go.optimize|Optimize|Ctrl+3\n"
              "menu.go.optimizationSuggestions|Suggestions|Ctrl+4\n"
              "menu.go.aiAdvisor|AI Advisor|Ctrl+5\n"
              "menu.go.chat|Chat|Ctrl+6\n"
              "menu.go.remoteMacs|Remote Macs|Ctrl+7\n"
              "menu.go.history|History|Ctrl+8\n"
              "menu.go.settings|Settings|Ctrl+9\n"
              "menu.go.filter-processes|Filter Processes|Ctrl+F");
}

TEST_F(MenusTest, GoMenuSelectsARoute) {
    showWithSample();
    QMenu* go = nullptr;
    for (const QAction* entry : window().menuBar()->actions()) {
        if (entry->text().remove(u'&') == u"Go"_s) {
            go = entry->menu();
        }
    }
    ASSERT_NE(go, nullptr);
    const QList<QAction*> entries = go->actions();
    ASSERT_GT(entries.size(), static_cast<qsizetype>(allAppRoutes.size()));
    for (std::size_t i = allAppRoutes.size(); i-- > 0;) {
        QAction* entry = entries.at(static_cast<qsizetype>(i));
        EXPECT_EQ(entry->text(), dashboard_text::text(title(allAppRoutes.at(i))));
        entry->trigger();
        settle();
        EXPECT_EQ(route(), allAppRoutes.at(i));
    }
}

TEST_F(MenusTest, OnlyQuitTallowcrestHasTheQuitRole) {
    for (const QAction* action : window().findChildren<QAction*>()) {
        if (action->objectName() == u"menu.quit"_s) {
            EXPECT_EQ(action->menuRole(), QAction::QuitRole);
        } else if (action->text().startsWith(u"Quit"_s) || action->text() == u"Settings"_s) {
            EXPECT_EQ(action->menuRole(), QAction::NoRole) << action->text().toStdString();
        }
    }
}

TEST_F(MenusTest, FileCopiesAndExportsTheReport) {
    std::vector<std::string> copied;
    machine.storeOnPasteboard = [&copied](const std::string& text) { copied.push_back(text); };
    show();
    press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(lastAction(), "Monitoring started.") << "nothing to copy yet";
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(textOf("status.last-action"), u"No diagnostic sample is available yet."_s);
    machine.finishSamples();
    settle();
    const auto report = machine.monitor().reports().diagnosticsReport(false);
    press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(copied, std::vector<std::string>{*report});
    EXPECT_EQ(textOf("status.last-action"), u"Copied a performance report to the clipboard."_s);
    entry("menu.export-diagnostics").trigger();
    machine.finishSamples();
    settle();
    ASSERT_EQ(machine.reportFolder->written.size(), 1U);
    EXPECT_EQ(machine.reportFolder->revealed.size(), 1U);
    entry("menu.export-setup-script").trigger();
    machine.finishSamples();
    settle();
    EXPECT_EQ(machine.reportFolder->scripts.size(), 1U);
    EXPECT_EQ(textOf("status.last-action"), u"Exported remote SSH setup script."_s);
}

TEST_F(MenusTest, FileAsksBeforeItQuitsTheSelectedProcess) {
    showWithSample();
    machine.monitor().actions().review.selectProcess(machine.metrics->processes[1]);
    entry("menu.quit-selected-process").trigger();
    EXPECT_EQ(pendingTitle(), "Quit editor?");
    entry("menu.quit-selected-app").trigger();
    EXPECT_EQ(pendingTitle(), "Quit editor?");
    EXPECT_EQ(machine.monitor().confirmations().pendingConfirmation()->confirmTitle,
              "Quit App Group");
    settle();
    EXPECT_NE(visible("confirmation.cancel"), nullptr);
}

TEST_F(MenusTest, BothDeleteKeysQuitTheSelectedProcess) {
    showWithSample();
    machine.monitor().actions().review.selectProcess(machine.metrics->processes[1]);
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace}) {
        for (const AppRoute each : {AppRoute::overview, AppRoute::load}) {
            goTo(each);
            if (each == AppRoute::load) {
                table().setFocus();
            }
            press(key, Qt::ControlModifier);
            EXPECT_EQ(pendingTitle(), "Quit editor?") << rawValue(each);
            machine.monitor().confirmations().cancelPending();
            settle();
            // A window manager does this when a dialog closes.
            window().activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        }
    }
}

TEST_F(MenusTest, ARefusalWithoutASelectionIsShown) {
    showWithSample();
    press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(pendingTitle(), "(none)");
    EXPECT_EQ(textOf("status.last-action"), u"Select a process first."_s);
    machine.metrics->processes.clear();
    tick();
    entry("menu.quit-selected-app").trigger();
    settle();
    EXPECT_EQ(textOf("status.last-action"), u"Select an app group first."_s);
}

TEST_F(MenusTest, InATextFieldTheDeleteKeysDeleteAWord) {
    showWithSample();
    machine.monitor().actions().review.selectProcess(machine.metrics->processes[1]);
    goTo(AppRoute::load);
    auto* field = visible<QLineEdit>("processes.filter");
    ASSERT_NE(field, nullptr);
    field->setFocus();
    for (const auto& [key, cursor] : {std::pair{Qt::Key_Delete, 0}, {Qt::Key_Backspace, 9}}) {
        field->setText(u"one three"_s);
        field->setCursorPosition(cursor);
        press(key, Qt::ControlModifier);
        EXPECT_LT(field->text().size(), 7) << field->text().toStdString();
        EXPECT_FALSE(field->text().isEmpty());
        EXPECT_EQ(pendingTitle(), "(none)");
    }
    field->clear();
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(pendingTitle(), "(none)") << "an empty field is a text field too";
}

}  // namespace
}  // namespace tallowcrest
