#include <set>
#include <utility>
#include <vector>

#include <QAbstractItemView>
#include <QAccessible>
#include <QLayout>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

#include "presentation/shell/sidebar.h"
#include "presentation/widgets/card.h"
#include "remote/remote.h"
#include "tests/presentation/remote_fleet.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

std::string nameOf(const QWidget& widget) {
    return std::string(widget.metaObject()->className()) + " \"" +
           widget.objectName().toStdString() + "\" (" + widget.accessibleName().toStdString() + ")";
}

/// Whether `widget` is the content of a scroll area, which may be taller than the area but not
/// wider.
bool isScrolled(const QWidget& widget) {
    const auto* area = widget.parentWidget() == nullptr
                           ? nullptr
                           : qobject_cast<QScrollArea*>(widget.parentWidget()->parentWidget());
    return area != nullptr && area->widget() == &widget;
}

std::string boxOf(const QRect& box) {
    return "[" + std::to_string(box.left()) + ", " + std::to_string(box.top()) + "; " +
           std::to_string(box.width()) + " x " + std::to_string(box.height()) + "]";
}

void expectInsideParent(const QWidget& widget) {
    const QRect room = widget.parentWidget()->rect();
    const QRect taken = widget.geometry();
    if (isScrolled(widget)) {
        EXPECT_LE(taken.width(), room.width()) << nameOf(widget);
        return;
    }
    EXPECT_TRUE(room.contains(taken)) << nameOf(widget) << " takes " << boxOf(taken) << " of "
                                      << nameOf(*widget.parentWidget()) << boxOf(room);
}

/// Expects the widget to have at least its minimum size.
void expectItsRoom(const QWidget& widget) {
    const QSize needed = widget.minimumSizeHint();
    const bool wrapsTexts = widget.layout() != nullptr && widget.layout()->hasHeightForWidth();
    EXPECT_GE(widget.width(), needed.width()) << nameOf(widget);
    EXPECT_GE(widget.height(),
              wrapsTexts ? widget.layout()->minimumHeightForWidth(widget.width()) : needed.height())
        << nameOf(widget);
}

class WindowLayoutTest : public WindowFixture {
protected:
    std::vector<QWidget*> visibleWidgets() {
        std::vector<QWidget*> found;
        for (QWidget* each : window().findChildren<QWidget*>()) {
            if (each->isVisible() && !each->isWindow()) {
                found.push_back(each);
            }
        }
        return found;
    }

    template <class Kind>
    std::vector<Kind*> visibleOf() {
        std::vector<Kind*> found;
        for (QWidget* each : visibleWidgets()) {
            if (auto* kind = qobject_cast<Kind*>(each)) {
                found.push_back(kind);
            }
        }
        return found;
    }

    /// Machines of the tailnet with long and hostile names, of which some are in trouble.
    void scanMachines() {
        Remote& remote = machine.monitor().remote();
        remote.tailnet.publish({fleetPeers(40), {std::string(300, 'W')}});
        std::vector<RemoteHealth> machines = fleetHealth(12, 3, machine.clock.now());
        machines[1].hostName = std::string(300, 'W');
        machines[2].hostName = "<b>two</b>\nlines";
        machines[5].recommendation = std::string(3000, 'w');
        remote.scan.finishRemoteScan(std::move(machines));
        settle();
        settle();  // a card within several layouts has its height a turn later
    }

    void expectNothingCutOff() {
        for (const QWidget* widget : visibleWidgets()) {
            expectInsideParent(*widget);
        }
        for (const QPushButton* button : visibleOf<QPushButton>()) {
            EXPECT_GE(button->width(), button->sizeHint().width()) << nameOf(*button);
            EXPECT_GE(button->height(), button->sizeHint().height()) << nameOf(*button);
        }
        for (const Card* card : visibleOf<Card>()) {
            expectItsRoom(*card);
        }
        for (const ElidedLabel* label : visibleOf<ElidedLabel>()) {
            expectItsRoom(*label);
        }
    }

    void show900x600() {
        window().resize(900, 600);
        showWithSample();
    }
};

// Sizes ------------------------------------------------------------------------------------------

/// A size that a failing test can print.
struct WindowSize {
    int width;
    int height;

    operator QSize() const { return {width, height}; }  // NOLINT(google-explicit-constructor)
    friend std::ostream& operator<<(std::ostream& out, const WindowSize& size) {
        return out << size.width << 'x' << size.height;
    }
};

class WindowLayoutAtSize : public WindowLayoutTest,
                           public testing::WithParamInterface<WindowSize> {};

TEST_P(WindowLayoutAtSize, NothingIsCutOffOnAnyRoute) {
    window().resize(QSize(GetParam()));
    showWithSample();
    ASSERT_EQ(window().size(), QSize(GetParam()));
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        SCOPED_TRACE(std::string(title(each)));
        expectNothingCutOff();
    }
    goTo(AppRoute::remoteMacs);
    scanMachines();
    expectNothingCutOff();
}

TEST_P(WindowLayoutAtSize, ResizingToThisSizeCutsNothingOff) {
    window().resize(1600, 1000);
    showWithSample();
    window().resize(QSize(GetParam()));
    settle();
    ASSERT_EQ(window().size(), QSize(GetParam()));
    for (const QWidget* widget : visibleWidgets()) {
        expectInsideParent(*widget);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, WindowLayoutAtSize,
                         testing::Values(WindowSize{640, 480}, WindowSize{700, 500},
                                         WindowSize{800, 600}, WindowSize{859, 600},
                                         WindowSize{900, 600}, WindowSize{1080, 720},
                                         WindowSize{1200, 800}, WindowSize{1600, 1000},
                                         WindowSize{2560, 1440}),
                         [](const auto& tested) { return testing::PrintToString(tested.param); });

TEST_F(WindowLayoutTest, TheWindowHasAMinimumSize) {
    window().resize(100, 100);
    showWithSample();
    EXPECT_EQ(window().size(), QSize(640, 480));
}

TEST_F(WindowLayoutTest, NoTextIsCutAt900x600) {
    show900x600();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        for (const ElidedLabel* label : visibleOf<ElidedLabel>()) {
            const QStringList lines = label->shownLines();
            if (!lines.isEmpty() && !label->text().endsWith(u'…')) {
                EXPECT_FALSE(lines.last().endsWith(u'…')) << label->text().toStdString();
            }
        }
    }
}

TEST_F(WindowLayoutTest, MostOfTheWindowIsThePage) {
    showWithSample();
    goTo(AppRoute::load);
    const auto roomAt = [this](int width, int height) {
        window().resize(width, height);
        settle();
        const QWidget* bar = visible("target");
        return height - bar->mapTo(&window(), QPoint(0, bar->height())).y();
    };
    EXPECT_GE(roomAt(640, 480), 310);
    EXPECT_GE(roomAt(900, 600), 430);
    EXPECT_GE(roomAt(1200, 800), 620);
}

TEST_F(WindowLayoutTest, TheGaugesAreInOneRowOrInTwoInANarrowWindow) {
    show900x600();
    const auto rowsOfGauges = [this] {
        std::set<int> tops;
        for (const Card* card : visible("overview.gauges")->findChildren<Card*>()) {
            tops.insert(card->y());
        }
        return tops.size();
    };
    EXPECT_EQ(rowsOfGauges(), 1U);
    window().resize(640, 480);
    settle();
    EXPECT_EQ(rowsOfGauges(), 2U);
    window().resize(900, 600);
    settle();
    EXPECT_EQ(rowsOfGauges(), 1U);
}

TEST_F(WindowLayoutTest, TheSidebarFoldsWhenTheWindowIsNarrow) {
    window().resize(860, 600);
    showWithSample();
    const auto* sidebar = window().findChild<Sidebar*>();
    const auto* row = visible<SidebarRow>("sidebar.load");
    const int unfolded = sidebar->width();
    EXPECT_TRUE(row->toolTip().isEmpty());
    window().resize(859, 600);
    settle();
    EXPECT_LT(sidebar->width(), unfolded / 2);
    EXPECT_EQ(row->toolTip(), u"Processes"_s);
    EXPECT_EQ(row->accessibleName(), u"Processes"_s);
    window().resize(860, 600);
    settle();
    EXPECT_EQ(sidebar->width(), unfolded);
}

TEST_F(WindowLayoutTest, ANewSampleMovesNothing) {
    show900x600();
    const auto sample = [this](double cpu, double pressure, double usedGB) {
        machine.metrics->processes[0].cpu = cpu;
        machine.metrics->memory.pressure = pressure;
        machine.metrics->memory.usedGB = usedGB;
        machine.metrics->memory.freeGB = 16.0 - usedGB;
        tick();
    };
    for (const AppRoute each : {AppRoute::overview, AppRoute::load}) {
        goTo(each);
        sample(400.0, 100.0, 15.9);
        // Nested layouts reach the page one turn after the other.
        settle();
        std::vector<std::pair<QWidget*, QRect>> before;
        for (QWidget* widget : visibleWidgets()) {
            if (qobject_cast<QScrollBar*>(widget) == nullptr) {
                before.emplace_back(widget, widget->geometry());
            }
        }
        const auto expectNothingMoved = [&before] {
            for (const auto& [widget, geometry] : before) {
                if (widget->isVisible()) {
                    EXPECT_EQ(boxOf(widget->geometry()), boxOf(geometry)) << nameOf(*widget);
                }
            }
        };
        sample(355.0, 86.0, 9.1);
        expectNothingMoved();
        sample(400.0, 100.0, 15.9);
        expectNothingMoved();
    }
}

TEST_F(WindowLayoutTest, AChangeOfLoadDoesNotMoveTheBlocksOfTheOverview) {
    show900x600();
    const auto sample = [this](double cpu, double pressure) {
        machine.metrics->processes[0].cpu = cpu;
        machine.metrics->memory.pressure = pressure;
        tick();
    };
    // Starts with the most recommendations, because one without reserved room moves the blocks
    // below.
    sample(400.0, 100.0);
    // Nested layouts reach the page one turn after the other.
    settle();
    std::vector<std::pair<Card*, QRect>> before;
    for (Card* card : visibleOf<Card>()) {
        before.emplace_back(card, card->geometry());
    }
    ASSERT_GE(before.size(), 9U);
    for (const double pressure : {50.0, 75.0, 100.0}) {
        sample(4.0 * pressure, pressure);
        for (const auto& [card, geometry] : before) {
            EXPECT_EQ(boxOf(card->geometry()), boxOf(geometry)) << nameOf(*card);
        }
    }
}

// Assistive technology and the keyboard ----------------------------------------------------------

TEST_F(WindowLayoutTest, EveryControlHasANameADescriptionAndAnIdentifier) {
    show900x600();
    scanMachines();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        std::vector<QWidget*> controls;
        for (QWidget* widget : visibleWidgets()) {
            const bool belongsToAField =
                qobject_cast<QLineEdit*>(widget->parentWidget()) != nullptr;
            if ((qobject_cast<QAbstractButton*>(widget) != nullptr && !belongsToAField) ||
                qobject_cast<QLineEdit*>(widget) != nullptr ||
                qobject_cast<QAbstractItemView*>(widget) != nullptr) {
                controls.push_back(widget);
            }
        }
        EXPECT_GE(controls.size(), 10U) << "nine routes and Refresh";
        std::set<QString> identifiers;
        for (const QWidget* control : controls) {
            EXPECT_FALSE(control->accessibleName().isEmpty()) << nameOf(*control);
            EXPECT_FALSE(control->accessibleDescription().isEmpty()) << nameOf(*control);
            EXPECT_FALSE(control->objectName().isEmpty()) << nameOf(*control);
            EXPECT_TRUE(identifiers.insert(control->objectName()).second) << nameOf(*control);
        }
        for (const Card* card : visibleOf<Card>()) {
            EXPECT_FALSE(card->accessibleName().isEmpty()) << nameOf(*card);
            EXPECT_FALSE(card->objectName().isEmpty()) << nameOf(*card);
        }
    }
}

TEST_F(WindowLayoutTest, TheButtonsWithinATextFieldHaveNames) {
    window().state().navigation.setSelectedRoute(AppRoute::load);
    window().state().navigation.setProcessFilter("editor");
    show900x600();
    const auto buttons = visible<QLineEdit>("processes.filter")->findChildren<QAbstractButton*>();
    ASSERT_EQ(buttons.size(), 2);
    for (QAbstractButton* button : buttons) {
        QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(button);
        ASSERT_NE(spoken, nullptr);
        EXPECT_FALSE(spoken->text(QAccessible::Name).isEmpty());
    }
}

TEST_F(WindowLayoutTest, EveryFocusableControlIsReachedByTab) {
    show900x600();
    machine.setTailDevices(fleetPeers(3));
    for (const AppRoute each :
         {AppRoute::overview, AppRoute::load, AppRoute::remoteMacs, AppRoute::history}) {
        goTo(each);
        SCOPED_TRACE(std::string(title(each)));
        const QString selected = u"sidebar."_s + QString::fromUtf8(rawValue(each).data());
        visible(selected.toLatin1().constData())->setFocus(Qt::TabFocusReason);
        std::set<const QWidget*> reached;
        for (int presses = 0; presses < 40; ++presses) {
            reached.insert(QApplication::focusWidget());
            press(Qt::Key_Tab);
        }
        for (const QWidget* widget : visibleWidgets()) {
            // In an exclusive group, Tab reaches the selected button and arrow keys the others.
            const bool isOtherRoute = qobject_cast<const SidebarRow*>(widget) != nullptr &&
                                      widget->objectName() != selected;
            const bool takesTab = (widget->focusPolicy() & Qt::TabFocus) != 0 &&
                                  widget->isEnabled() && widget->focusProxy() == nullptr;
            if (takesTab && !isOtherRoute && qobject_cast<const QMenuBar*>(widget) == nullptr) {
                EXPECT_TRUE(reached.contains(widget)) << nameOf(*widget);
            }
        }
    }
}

TEST_F(WindowLayoutTest, TabFollowsTheVisualOrder) {
    show900x600();
    goTo(AppRoute::load);
    visible("sidebar.load")->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(
        tabOrder(14),
        u"sidebar.load load.select-top load.activity page.refresh "
        "status.emergency-stop target.choose processes.select-top-row processes.activity-monitor "
        "processes.filter processes.order.process processes.order.cpu "
        "processes.order.memory processes.order.memory-percent processes.table"_s);
}

TEST_F(WindowLayoutTest, TheFocusMovesOnWhenItsButtonIsHidden) {
    show900x600();
    visible("overview.review-cleanup")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    ASSERT_EQ(route(), AppRoute::optimize);
    const QWidget* focus = QApplication::focusWidget();
    ASSERT_NE(focus, nullptr);
    EXPECT_TRUE(focus->isVisible());
}

}  // namespace
}  // namespace tallowcrest
