#include "presentation/screens/optimize/workspace_bar.h"

#include <ostream>

#include <QAccessible>
#include <QScrollArea>
#include <QScrollBar>

#include "presentation/widgets/tab_strip.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

struct LineCase {
    AppRoute route;
    const char* line;
    const char* tab;    ///< empty where the route is no step
    const char* title;  ///< of the tab

    friend std::ostream& operator<<(std::ostream& out, const LineCase& tested) {
        return out << rawValue(tested.route);
    }
};

const LineCase lineCases[] = {
    {AppRoute::optimizationSuggestions,
     "Start here for prioritized next steps across CPU, memory, and disk. Analyze first; review "
     "every proposed change.",
     "optimize.recommended", "Recommended"},
    {AppRoute::optimize,
     "Select one process or app group, review its impact, then choose a manual cleanup action. "
     "Nothing quits automatically.",
     "optimize.cleanup", "Cleanup"},
    {AppRoute::aiAdvisor,
     "Use AI for explanations and trust-controlled reversible actions. Autonomy grows only from "
     "successful reviewed actions.",
     "optimize.ai-advisor", "AI Advisor"},
    {AppRoute::chat,
     "Ask a question about current diagnostics. Chat explains and points to controls but never "
     "executes actions.",
     "optimize.ask-ai", "Ask AI"},
    {AppRoute::overview, "Choose an optimization workflow.", "", ""},
    {AppRoute::load, "Choose an optimization workflow.", "", ""},
    {AppRoute::remoteMacs, "Choose an optimization workflow.", "", ""},
    {AppRoute::history, "Choose an optimization workflow.", "", ""},
    {AppRoute::settings, "Choose an optimization workflow.", "", ""},
};

class WorkspaceBarTest : public WindowFixture {
protected:
    StripTab* tab(const char* identifier) { return visible<StripTab>(identifier); }

    QString focused() {
        const QWidget* focus = QApplication::focusWidget();
        return focus == nullptr ? QString() : focus->objectName();
    }
};

class WorkspaceBarOnRoute : public WorkspaceBarTest,
                            public testing::WithParamInterface<LineCase> {};

TEST_P(WorkspaceBarOnRoute, SaysWhatItsStepIsAbout) {
    EXPECT_EQ(workspaceLine(GetParam().route).toStdString(), GetParam().line);
    EXPECT_EQ(WorkspaceBar::isStep(GetParam().route), *GetParam().tab != '\0');
}

TEST_P(WorkspaceBarOnRoute, StandsOnEveryStepWithThatSelected) {
    show();
    goTo(GetParam().route);
    if (*GetParam().tab == '\0') {
        EXPECT_EQ(visible("optimize.workspace"), nullptr);
        return;
    }
    ASSERT_NE(visible("optimize.workspace"), nullptr);
    EXPECT_EQ(textOf("optimize.workspace.line").toStdString(), GetParam().line);
    const StripTab* selected = tab(GetParam().tab);
    ASSERT_NE(selected, nullptr);
    EXPECT_EQ(selected->text(), QString::fromLatin1(GetParam().title));
    int selectedCount = 0;
    for (const LineCase& each : lineCases) {
        const StripTab* other = *each.tab == '\0' ? nullptr : tab(each.tab);
        selectedCount += other != nullptr && other->isChecked() ? 1 : 0;
    }
    EXPECT_EQ(selectedCount, 1);
    EXPECT_TRUE(selected->isChecked());
}

INSTANTIATE_TEST_SUITE_P(Routes, WorkspaceBarOnRoute, testing::ValuesIn(lineCases),
                         [](const auto& tested) {
                             return std::string(rawValue(tested.param.route));
                         });

TEST_F(WorkspaceBarTest, ItStandsInTheOrderOfTheWorkflowBelowItsHeading) {
    showWithSample();
    goTo(AppRoute::optimize);
    const QWidget* bar = visible("optimize.workspace");
    EXPECT_EQ(bar->accessibleName(), u"Optimize Workspace"_s);
    QStringList titles;
    int right = -1;
    for (const StripTab* each : bar->findChildren<StripTab*>()) {
        EXPECT_GT(each->x(), right);
        right = each->geometry().right();
        titles.append(each->text());
    }
    EXPECT_EQ(titles.join(u'|'), u"Recommended|Cleanup|AI Advisor|Ask AI"_s);
    bool hasHeading = false;
    for (const ElidedLabel* label : bar->findChildren<ElidedLabel*>()) {
        hasHeading = hasHeading || label->text() == u"Optimize Workspace"_s;
    }
    EXPECT_TRUE(hasHeading);
}

TEST_F(WorkspaceBarTest, AClickGoesToTheStep) {
    showWithSample();
    goTo(AppRoute::optimize);
    click("optimize.recommended");
    EXPECT_EQ(route(), AppRoute::optimizationSuggestions);
    click("optimize.ai-advisor");
    EXPECT_EQ(route(), AppRoute::aiAdvisor);
    click("optimize.ask-ai");
    EXPECT_EQ(route(), AppRoute::chat);
    click("optimize.cleanup");
    EXPECT_EQ(route(), AppRoute::optimize);
    EXPECT_TRUE(tab("optimize.cleanup")->isChecked());
}

TEST_F(WorkspaceBarTest, AClickOnTheSelectedStepChangesNothing) {
    showWithSample();
    goTo(AppRoute::optimize);
    click("optimize.cleanup");
    EXPECT_EQ(route(), AppRoute::optimize);
    EXPECT_TRUE(tab("optimize.cleanup")->isChecked());
}

TEST_F(WorkspaceBarTest, ArrowKeysGoThroughTheStepsAndStopAtTheEnds) {
    showWithSample();
    goTo(AppRoute::optimize);
    tab("optimize.cleanup")->setFocus(Qt::TabFocusReason);
    const auto expectAt = [this](AppRoute expected, const char* identifier) {
        EXPECT_EQ(route(), expected);
        EXPECT_EQ(focused(), QString::fromLatin1(identifier));
        EXPECT_TRUE(QApplication::focusWidget()->isVisible());
    };
    press(Qt::Key_Right);
    expectAt(AppRoute::aiAdvisor, "optimize.ai-advisor");
    press(Qt::Key_Right);
    expectAt(AppRoute::chat, "optimize.ask-ai");
    press(Qt::Key_Right);
    expectAt(AppRoute::chat, "optimize.ask-ai");
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    expectAt(AppRoute::optimize, "optimize.cleanup");
    press(Qt::Key_Left);
    expectAt(AppRoute::optimizationSuggestions, "optimize.recommended");
    press(Qt::Key_Left);
    expectAt(AppRoute::optimizationSuggestions, "optimize.recommended");
}

TEST_F(WorkspaceBarTest, AChosenStepTakesTheKeyboardFromWhereItWasOnThatPageBefore) {
    showWithSample();
    goTo(AppRoute::optimize);
    visible("cleanup.purge-caches")->setFocus(Qt::TabFocusReason);
    goTo(AppRoute::chat);
    tab("optimize.ask-ai")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    ASSERT_EQ(route(), AppRoute::optimize);
    EXPECT_EQ(focused(), u"optimize.cleanup"_s);
}

TEST_F(WorkspaceBarTest, AChosenStepIsInViewOnAPageThatWasScrolled) {
    window().resize(640, 440);
    showWithSample();
    goTo(AppRoute::optimize);
    machine.monitor().review().selectTopApp();
    settle();
    QScrollArea* area = nullptr;
    for (QScrollArea* each : window().findChildren<QScrollArea*>()) {
        if (each->isVisible() && each->isAncestorOf(visible("optimize.workspace"))) {
            area = each;
        }
    }
    ASSERT_NE(area, nullptr);
    area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
    ASSERT_GT(area->verticalScrollBar()->value(), 100);
    goTo(AppRoute::chat);
    click("optimize.cleanup");
    const QRect place(tab("optimize.cleanup")->mapTo(area->viewport(), QPoint()),
                      tab("optimize.cleanup")->size());
    EXPECT_TRUE(area->viewport()->rect().contains(place));
}

TEST_F(WorkspaceBarTest, TheRingFollowsTheArrowKeysAndNoClick) {
    showWithSample();
    goTo(AppRoute::optimize);
    const auto isRinged = [](QWidget& widget) {
        return widget.grab().toImage().pixelColor(widget.width() / 2, 1) ==
               CrestTheme::current().accentText;
    };
    tab("optimize.cleanup")->setFocus(Qt::MouseFocusReason);
    press(Qt::Key_Right);
    ASSERT_EQ(focused(), u"optimize.ai-advisor"_s);
    EXPECT_TRUE(isRinged(*tab("optimize.ai-advisor")));
    click("optimize.ask-ai");
    ASSERT_EQ(focused(), u"optimize.ask-ai"_s);
    EXPECT_FALSE(isRinged(*tab("optimize.ask-ai")));
}

TEST_F(WorkspaceBarTest, AnotherWayToTheRouteLeavesTheKeyboardWhereItIs) {
    showWithSample();
    goTo(AppRoute::optimize);
    visible("page.refresh")->setFocus(Qt::TabFocusReason);
    goTo(AppRoute::chat);
    EXPECT_EQ(focused(), u"page.refresh"_s);
}

TEST_F(WorkspaceBarTest, OneTabStopLeadsToTheSelectedStep) {
    showWithSample();
    goTo(AppRoute::aiAdvisor);
    for (const LineCase& each : lineCases) {
        if (*each.tab != '\0') {
            EXPECT_EQ((tab(each.tab)->focusPolicy() & Qt::TabFocus) != 0,
                      each.route == AppRoute::aiAdvisor)
                << each.tab;
        }
    }
}

TEST_F(WorkspaceBarTest, AssistiveTechnologySeesTabsOfWhichOneIsSelected) {
    showWithSample();
    goTo(AppRoute::optimize);
    QAccessibleInterface* bar =
        QAccessible::queryAccessibleInterface(visible("optimize.workspace"));
    EXPECT_EQ(bar->role(), QAccessible::Grouping);
    EXPECT_EQ(bar->text(QAccessible::Name), u"Optimize Workspace"_s);
    QAccessibleInterface* list =
        QAccessible::queryAccessibleInterface(tab("optimize.cleanup")->parentWidget());
    EXPECT_EQ(list->role(), QAccessible::PageTabList);
    ASSERT_EQ(list->childCount(), 4);
    for (int place = 0; place < 4; ++place) {
        QAccessibleInterface* each = list->child(place);
        EXPECT_EQ(each->role(), QAccessible::PageTab);
        EXPECT_TRUE(each->state().selectable);
        EXPECT_EQ(each->state().selected, place == 1);
        EXPECT_FALSE(each->text(QAccessible::Description).isEmpty());
    }
    EXPECT_EQ(list->child(2)->text(QAccessible::Name), u"AI Advisor"_s);
    list->child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    settle();
    EXPECT_EQ(route(), AppRoute::aiAdvisor);
}

TEST_F(WorkspaceBarTest, ANarrowWindowCutsNeitherHeadingNorTabs) {
    window().resize(640, 440);
    showWithSample();
    for (const LineCase& each : lineCases) {
        if (*each.tab == '\0') {
            continue;
        }
        goTo(each.route);
        const QWidget* bar = visible("optimize.workspace");
        for (const ElidedLabel* label : bar->findChildren<ElidedLabel*>()) {
            ASSERT_FALSE(label->shownLines().isEmpty());
            EXPECT_FALSE(label->shownLines().last().endsWith(u'…')) << label->text().toStdString();
        }
        for (const StripTab* other : bar->findChildren<StripTab*>()) {
            EXPECT_TRUE(bar->rect().contains(QRect(other->mapTo(bar, QPoint()), other->size())));
            EXPECT_GE(other->width(), other->sizeHint().width());
        }
    }
}

}  // namespace
}  // namespace tallowcrest
