#include <functional>
#include <set>
#include <string>
#include <vector>

#include <QAccessible>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QToolButton>
#include <gtest/gtest-spi.h>

#include "presentation/screens/shared/screen.h"
#include "tests/presentation/shell/accessible_places.h"
#include "tests/presentation/shell/operations.h"
#include "tests/presentation/shell/rig.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;

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
        std::vector<Operation> operations;  ///< none when it is disabled
    };
    /// The identities of the controls that were found.
    struct Found {
        std::set<QString> walked;    ///< operated at the first place where they are enabled
        std::set<QString> disabled;  ///< somewhere
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
        for (QWidget* each : rig.walked().findChildren<QWidget*>()) {
            if (!isControl(*each) || !each->isVisible() || each->window() != &rig.walked()) {
                continue;
            }
            if (each->isEnabled()) {
                EXPECT_THAT(objects, Contains(each)) << each->objectName().toStdString();
            } else {
                listed.push_back(
                    {identityOf(rig, *QAccessible::queryAccessibleInterface(each)), {}});
            }
        }
        return listed;
    }

    /// Operates each control of the places that was not walked before, by both ways.
    static void walk(const std::vector<Place>& places, Found& found) {
        for (const Place& place : places) {
            const std::vector<Listed> controls = controlsAt(place);
            for (std::size_t i = 0; i < controls.size(); ++i) {
                if (controls[i].operations.empty()) {
                    found.disabled.insert(controls[i].identity);
                    continue;
                }
                if (!found.walked.insert(controls[i].identity).second) {
                    continue;
                }
                for (const Operation& operation : controls[i].operations) {
                    SCOPED_TRACE(
                        (place.name + u": "_s + operation.name + u' ' + controls[i].identity)
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
    Found found;
    walk(places(), found);
    const std::set<QString>& walked = found.walked;
    std::vector<std::string> neverEnabled;
    for (const QString& identity : found.disabled) {
        if (!walked.contains(identity)) {
            neverEnabled.push_back(identity.toStdString());
        }
    }
    EXPECT_THAT(neverEnabled, testing::ElementsAre());
    for (const char* each :
         {"never-quit", "review-disk-cleanup", "find-offenders", "disk-autopilot-receipt-undo",
          "disk-autopilot-receipt-progress-stop", "cleanup-search-progress-stop",
          "cleanup-progress-stop", "scan-progress-stop", "storage-area-1.reveal"}) {
        EXPECT_THAT(walked,
                    Contains(u"tallowcrest::OptimizePage cleanup."_s + QLatin1String(each)));
    }
    for (const char* each : {"analyze-files", "file-1.reveal", "file-1.back-up", "file-1.trash",
                             "storage-analyzer-progress-stop", "storage-analyzer-backup-stop"}) {
        EXPECT_THAT(walked, Contains(u"tallowcrest::OptimizationSuggestionsPage suggestions."_s +
                                     QLatin1String(each)));
    }
    for (const char* each : {"ai.analyze", "ai.suggestion-1.run", "ai.reset-trust", "ai.draft-1",
                             "ai.autonomy.autopilot"}) {
        EXPECT_THAT(walked, Contains(u"tallowcrest::AdvisorPage "_s + QLatin1String(each)));
    }
    for (const char* each :
         {"SetupWizard setup.launch-at-login", "SetupWizard setup.done",
          "UpdateDialog update.button.0", "UpdateDialog update.button.1",
          "UpdateDialog update.button.2", "DashboardWindow update.bar.progress-stop",
          "SettingsSheet settings.install", "SettingsSheet settings.download-progress-stop"}) {
        EXPECT_THAT(walked, Contains(u"tallowcrest::"_s + QLatin1String(each)));
    }
}

/// Reacts to the pointer alone.
class PointerOnlyButton : public QPushButton {
public:
    explicit PointerOnlyButton(Rig& rig) : QPushButton(&rig.walked()), rig_(rig) {}

protected:
    void mousePressEvent(QMouseEvent*) override {
        rig_.machine.monitor().log().recordMessage("Pressed.");
    }

private:
    Rig& rig_;
};

/// The wizard with a control of which one thing is wrong.
Place planted(const std::function<QPushButton*(Rig&)>& make) {
    return {u"planted"_s, AppRoute::chat, [make](Rig& rig) {
                rig.openWizard();
                QPushButton* button = make(rig);
                button->setObjectName(u"setup.planted"_s);
                button->show();
            }};
}

TEST_F(AccessibleActionsTest, TheWalkFindsAControlWithoutEffect) {
    Found found;
    const Place place = planted([](Rig& rig) { return new QPushButton(&rig.walked()); });
    EXPECT_NONFATAL_FAILURE(walk({place}, found), "nothing changes");
    EXPECT_THAT(found.walked, Contains(u"tallowcrest::SetupWizard setup.planted"_s));
}

TEST_F(AccessibleActionsTest, TheWalkFindsAControlThatIsDisabled) {
    Found found;
    walk({planted([](Rig& rig) {
             auto* button = new QPushButton(&rig.walked());
             button->setEnabled(false);
             return button;
         })},
         found);
    EXPECT_THAT(found.disabled, Contains(u"tallowcrest::SetupWizard setup.planted"_s));
}

TEST_F(AccessibleActionsTest, TheWalkFindsAControlThatActionsDoNotReach) {
    Found found;
    const Place place = planted([](Rig& rig) { return new PointerOnlyButton(rig); });
    EXPECT_NONFATAL_FAILURE(walk({place}, found), "byHand.after");
}

TEST_F(AccessibleActionsTest, EachEntryOfTheMenusDoesSomething) {
    const auto entryOf = [](Rig& rig, const QString& identifier) {
        return rig.window().findChild<QAction*>(identifier);
    };
    std::set<QString> all;
    std::set<QString> effective;
    const std::vector<Place> starts{{u"overview"_s, AppRoute::overview, selectTarget},
                                    {u"chat"_s, AppRoute::chat, selectTarget},
                                    {u"stopped"_s, AppRoute::overview, engageStop}};
    for (const Place& start : starts) {
        std::vector<QString> enabled;
        {
            Rig rig;
            open(rig, start);
            for (const QAction* menu : rig.window().menuBar()->actions()) {
                for (const QAction* entry : menu->menu()->actions()) {
                    // The event loop that "Quit Tallowcrest" ends does not run here.
                    if (entry->isSeparator() || entry->objectName() == u"menu.quit"_s) {
                        continue;
                    }
                    all.insert(entry->objectName());
                    if (entry->isEnabled()) {
                        enabled.push_back(entry->objectName());
                    }
                }
            }
        }
        for (const QString& identifier : enabled) {
            if (effective.contains(identifier)) {
                continue;
            }
            Rig rig;
            open(rig, start);
            const std::string before = rig.facts();
            // Seen only by what takes a new sample.
            rig.machine.metrics->memory.pressure = 95.0;
            entryOf(rig, identifier)->trigger();
            rig.finishWork();
            if (rig.facts() != before) {
                effective.insert(identifier);
            }
        }
    }
    EXPECT_GE(all.size(), 20U);
    // An entry of the selected route does nothing, and each other one is enabled at some start.
    EXPECT_EQ(effective, all);
}

}  // namespace
}  // namespace tallowcrest
