#include <algorithm>
#include <functional>
#include <set>
#include <type_traits>
#include <variant>
#include <vector>

#include <QAccessible>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSlider>
#include <QToolButton>

#include "actions/automation.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "advisor/advisor.h"
#include "core/settings/settings_owner.h"
#include "presentation/screens/shared/screen.h"
#include "presentation/shell/confirmation_dialog.h"
#include "presentation/shell/menu_bar_entries.h"
#include "presentation/shell/menu_bar_panel.h"
#include "presentation/shell/settings/settings_sheet.h"
#include "presentation/words/dashboard_text.h"
#include "tests/presentation/shell/operations.h"
#include "tests/presentation/shown_texts.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using dashboard_text::text;
using testing::Contains;

QString described(const SettingsValue& value) {
    return std::visit(
        [](const auto& each) -> QString {
            using Value = std::decay_t<decltype(each)>;
            if constexpr (std::is_arithmetic_v<Value>) {
                return QString::number(each);
            } else if constexpr (std::is_same_v<Value, SettingsTextList>) {
                QStringList texts;
                for (const std::string& entry : each) {
                    texts.append(text(entry));
                }
                return texts.join(u'|');
            } else if constexpr (std::is_same_v<Value, std::string>) {
                return text(each);
            } else {
                return u"(a list)"_s;
            }
        },
        value);
}

/// A window over a machine of its own, and everything that operating a control can change.
class Rig final : public WindowFixture {
public:
    using WindowFixture::machine;
    using WindowFixture::settle;
    using WindowFixture::showWithSample;
    using WindowFixture::window;

    Rig() {
        machine.openActivityMonitor = [this] {
            outside_.append(u"opened the activity monitor"_s);
            return true;
        };
        machine.storeOnPasteboard = [this](const std::string& copied) {
            outside_.append(u"copied "_s + text(copied));
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

    /// The controls that assistive technology finds, in their order. Menus are Qt's own.
    std::vector<QAccessibleInterface*> controls() {
        for (QTimer* timer : window().findChildren<QTimer*>(u"settling"_s)) {
            timer->setInterval(0);
        }
        settle();
        std::vector<QAccessibleInterface*> found;
        collect(*QAccessible::queryAccessibleInterface(&walked()), found);
        return found;
    }

    /// Everything that an operation can change, but the focus.
    std::string facts() {
        machine.finishSamples();
        settle();
        SystemMonitor& monitor = machine.monitor();
        QStringList facts = outside_;
        facts.append(QString::number(machine.store.written.size()));
        for (const std::string& key :
             std::set(machine.store.written.begin(), machine.store.written.end())) {
            facts.append(text(key) + u" = "_s + described(*machine.store.read(key)));
        }
        for (const ActivityEvent& event : monitor.log().activityLog()) {
            facts.append(u"logged "_s + text(event.title) + u": "_s + text(event.detail));
        }
        facts.append(text(monitor.log().lastAction()));
        if (const auto& pending = monitor.confirmations().pendingConfirmation()) {
            facts.append(u"asked "_s + text(pending->title));
        }
        const Navigation& navigation = window().state().navigation;
        facts.append(text(rawValue(navigation.selectedRoute())));
        facts.append(text(navigation.processFilter()));
        facts.append(QString::number(actions().review.selectedPID().value_or(0)));
        for (const auto& [name, content] : machine.reportFolder->written) {
            facts.append(u"wrote "_s + text(name));
        }
        facts.append(QString::number(machine.actions.cachePurge->count));
        QWidgetList windows = QApplication::topLevelWidgets();
        std::ranges::sort(windows, {}, &QWidget::objectName);
        for (const QWidget* each : windows) {
            if (each->isVisible()) {
                facts.append(u"shows "_s + each->objectName());
                addShown(*each, facts);
            }
        }
        return facts.join(u'\n').toStdString();
    }

private:
    static void collect(QAccessibleInterface& from, std::vector<QAccessibleInterface*>& found);
    static void addShown(const QWidget& within, QStringList& facts);

    std::unique_ptr<MenuBarPanel> panel_;
    QWidget* walked_ = nullptr;
    QStringList outside_;
};

void Rig::addShown(const QWidget& within, QStringList& facts) {
    QStringList shown;
    for (const std::string& line : shownTexts(within)) {
        shown.append(text(line));
    }
    for (const auto* button : within.findChildren<QAbstractButton*>()) {
        if (button->isVisible()) {
            shown.append(button->objectName() + u' ' + button->text() +
                         (button->isChecked() ? u" checked"_s : QString()));
        }
    }
    for (const auto* slider : within.findChildren<QSlider*>()) {
        shown.append(slider->objectName() + u' ' + QString::number(slider->value()));
    }
    for (const auto* field : within.findChildren<QLineEdit*>()) {
        shown.append(field->objectName() + u' ' + field->text());
    }
    for (const auto* field : within.findChildren<QPlainTextEdit*>()) {
        shown.append(field->objectName() + u' ' + field->toPlainText());
    }
    // Not in their places: a click scrolls its control into view.
    shown.sort();
    facts += shown;
}

// Where the controls are --------------------------------------------------------------------------

/// Inside of a text field: its icon, and the button that clears it.
bool isPartOfField(const QAccessibleInterface& spoken) {
    return qobject_cast<const QToolButton*>(spoken.object()) != nullptr;
}

/// Qt's cells offer to toggle their selection, which only those that say "Review" have.
bool isCellWithoutControl(QAccessibleInterface& spoken) {
    return spoken.role() == QAccessible::Cell &&
           spoken.tableCellInterface()->columnIndex() != ProcessTableModel::actionColumn;
}

void Rig::collect(QAccessibleInterface& from, std::vector<QAccessibleInterface*>& found) {
    for (int i = 0; i < from.childCount(); ++i) {
        QAccessibleInterface* child = from.child(i);
        if (child == nullptr || child->state().invisible || child->role() == QAccessible::MenuBar) {
            continue;
        }
        if (!child->state().disabled && !isPartOfField(*child) && !isCellWithoutControl(*child) &&
            !operationsOf(*child).empty()) {
            found.push_back(child);
        }
        collect(*child, found);
    }
}

struct Place {
    QString name;
    AppRoute route;
    std::function<void(Rig&)> open;
};

/// The first of two processes of the group is not the target, so that reviewing it is a change.
void selectTarget(Rig& rig) {
    rig.machine.addProcess(701, "/usr/bin/editor", 300.0, 900.0);
    rig.machine.tick();
    rig.actions().review.selectProcessWithPID(700);
    rig.machine.monitor().log().recordMessage("Probe.");
    rig.settle();
}

void raiseLoad(Rig& rig) {
    rig.machine.metrics->memory.pressure = 95.0;
    rig.machine.tick();
    rig.settle();
}

void writeQuestion(Rig& rig) {
    rig.machine.monitor().advisor().chat.setAIChatInput("Why is it slow?");
    rig.settle();
}

void engageStop(Rig& rig) {
    rig.actions().automation.engageEmergencyStop();
    rig.settle();
}

/// One suggestion that can be run, with its trust record, and a draft that follows from it.
void suggest(Rig& rig) {
    Advisor& advisor = rig.machine.monitor().advisor();
    const std::vector<AIActionSuggestion> suggestions{
        {UUID::random(), "select_top", "Select it", "It helps.", "low"}};
    advisor.suggestions.setAIActions(suggestions);
    advisor.suggestions.approveAllSuggestions();
    advisor.drafts.generateRuleDrafts(suggestions);
    rig.settle();
}

std::vector<Place> places() {
    std::vector<Place> all{{u"without a target"_s, AppRoute::overview, [](Rig&) {}},
                           {u"processes without a target"_s, AppRoute::load, [](Rig&) {}},
                           {u"under load"_s, AppRoute::overview, raiseLoad},
                           {u"with a question"_s, AppRoute::chat, writeQuestion}};
    for (const AppRoute route : allAppRoutes) {
        all.push_back({text(rawValue(route)), route, selectTarget});
    }
    for (const AppRoute route : {AppRoute::overview, AppRoute::optimize, AppRoute::settings}) {
        all.push_back({u"stopped, "_s + text(rawValue(route)), route, engageStop});
    }
    for (const SettingsTabKind tab :
         {SettingsTabKind::ai, SettingsTabKind::remote, SettingsTabKind::localMac,
          SettingsTabKind::automation, SettingsTabKind::safety}) {
        all.push_back(
            {u"settings %1"_s.arg(static_cast<int>(tab)), AppRoute::chat, [tab](Rig& rig) {
                 rig.machine.monitor().settingsOwner().set(&Settings::protectedAppNames,
                                                           {"editor", "Logic Pro"});
                 rig.openSettings(tab);
             }});
    }
    all.push_back({u"settings, stopped"_s, AppRoute::chat, [](Rig& rig) {
                       engageStop(rig);
                       rig.openSettings(SettingsTabKind::safety);
                   }});
    all.push_back({u"suggestions"_s, AppRoute::aiAdvisor, suggest});
    all.push_back({u"confirmation"_s, AppRoute::chat, &Rig::ask});
    all.push_back({u"about"_s, AppRoute::chat, &Rig::openAbout});
    all.push_back({u"panel"_s, AppRoute::chat, &Rig::openPanel});
    return all;
}

void open(Rig& rig, const Place& place) {
    rig.window().state().navigation.setSelectedRoute(place.route);
    rig.showWithSample();
    place.open(rig);
}

/// Where a control belongs, and its name: the sidebar is walked on one page only.
QString identityOf(Rig& rig, QAccessibleInterface& control) {
    // A cell has no object of its own; its table has one.
    QAccessibleInterface* nearest = &control;
    while (nearest->object() == nullptr) {
        nearest = nearest->parent();
    }
    const QObject* object = nearest->object();
    const QString own = object->objectName() +
                        (nearest == &control ? QString() : u' ' + control.text(QAccessible::Name));
    const QObject* around = object;
    while (around != nullptr && qobject_cast<const Screen*>(around) == nullptr) {
        around = around->parent();
    }
    const QObject* where = around == nullptr ? &rig.walked() : around;
    return QString::fromLatin1(where->metaObject()->className()) + u' ' +
           (own.isEmpty() ? control.text(QAccessible::Name) : own);
}

// The test ----------------------------------------------------------------------------------------

class AccessibleActionsTest : public WindowFixture {
protected:
    struct Listed {
        QString identity;
        std::vector<Operation> operations;
    };
    struct Effect {
        std::string before;
        std::string after;
        bool wasSelected = false;
    };

    /// What one way to operate the control does, in a window of its own.
    static Effect effectOf(const Place& place, std::size_t control,
                           const std::function<void(QAccessibleInterface&)>& operate) {
        Rig rig;
        open(rig, place);
        const std::vector<QAccessibleInterface*> controls = rig.controls();
        QAccessibleInterface& operated = *controls.at(control);
        const QAccessible::State state = operated.state();
        Effect effect{.before = rig.facts(), .after = {}, .wasSelected = false};
        effect.wasSelected = state.selected || (operated.role() == QAccessible::RadioButton &&
                                                static_cast<bool>(state.checked));
        operate(operated);
        rig.settle();
        effect.after = rig.facts();
        return effect;
    }

    static std::vector<Listed> controlsAt(const Place& place) {
        Rig rig;
        open(rig, place);
        std::vector<Listed> listed;
        std::set<const QObject*> objects;
        for (QAccessibleInterface* each : rig.controls()) {
            listed.push_back({identityOf(rig, *each), operationsOf(*each)});
            objects.insert(each->object());
        }
        for (const QWidget* each : rig.walked().findChildren<QWidget*>()) {
            if (isControl(*each) && each->isVisible() && each->isEnabled() &&
                each->window() == &rig.walked()) {
                EXPECT_THAT(objects, Contains(each)) << each->objectName().toStdString();
            }
        }
        return listed;
    }

    static bool isControl(const QWidget& widget) {
        return qobject_cast<const QSlider*>(&widget) != nullptr ||
               qobject_cast<const QLineEdit*>(&widget) != nullptr ||
               qobject_cast<const QPlainTextEdit*>(&widget) != nullptr ||
               (qobject_cast<const QAbstractButton*>(&widget) != nullptr &&
                qobject_cast<const QToolButton*>(&widget) == nullptr);
    }
};

TEST_F(AccessibleActionsTest, DoWhatTheHandDoes) {
    std::set<QString> walked;
    for (const Place& place : places()) {
        const std::vector<Listed> controls = controlsAt(place);
        for (std::size_t i = 0; i < controls.size(); ++i) {
            if (!walked.insert(controls[i].identity).second) {
                continue;
            }
            for (const Operation& operation : controls[i].operations) {
                SCOPED_TRACE((place.name + u": "_s + operation.name + u' ' + controls[i].identity)
                                 .toStdString());
                const Effect byHand = effectOf(place, i, operation.byHand);
                const Effect byAction = effectOf(place, i, operation.byAction);
                EXPECT_EQ(byHand.before, byAction.before);
                EXPECT_EQ(byHand.after, byAction.after);
                EXPECT_TRUE(byHand.wasSelected || byHand.after != byHand.before)
                    << "nothing changes, so nothing is compared";
            }
        }
    }
    EXPECT_THAT(walked, Contains(u"tallowcrest::OptimizePage cleanup.never-quit"_s));
    for (const char* each : {"ai.analyze", "ai.suggestion-1.run", "ai.reset-trust", "ai.draft-1",
                             "ai.autonomy.autopilot"}) {
        EXPECT_THAT(walked, Contains(u"tallowcrest::AdvisorPage "_s + QLatin1String(each)));
    }
}

}  // namespace
}  // namespace tallowcrest
