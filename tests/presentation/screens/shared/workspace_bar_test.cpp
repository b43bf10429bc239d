#include "presentation/screens/shared/workspace_bar.h"

#include <ostream>
#include <tuple>
#include <utility>

#include <QAccessible>
#include <QScrollArea>
#include <QScrollBar>

#include "actions/actions.h"
#include "presentation/widgets/tab_strip.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/is_ringed.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

struct LineCase {
    AppRoute route;
    const char* line;
    const char* tab;    ///< empty if the route is not a step
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

TEST_P(WorkspaceBarOnRoute, HasALineForItsStep) {
    EXPECT_EQ(workspaceLine(GetParam().route).toStdString(), GetParam().line);
}

TEST_P(WorkspaceBarOnRoute, IsShownOnEveryStepWithThatSelected) {
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

TEST_F(WorkspaceBarTest, HasAHeadingAndItsTabsInOrder) {
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

TEST_F(WorkspaceBarTest, AClickGoesToTheStepAndMovesTheFocus) {
    showWithSample();
    goTo(AppRoute::optimize);
    for (const auto& [identifier, expected] :
         {std::pair{"optimize.recommended", AppRoute::optimizationSuggestions},
          {"optimize.ai-advisor", AppRoute::aiAdvisor},
          {"optimize.ask-ai", AppRoute::chat},
          {"optimize.cleanup", AppRoute::optimize}}) {
        click(identifier);
        EXPECT_EQ(route(), expected);
        EXPECT_EQ(focused(), QLatin1String(identifier));
        EXPECT_FALSE(isRinged(*tab(identifier), CrestTheme::current().accentText));
    }
}

TEST_F(WorkspaceBarTest, ArrowKeysGoFromStepToStep) {
    showWithSample();
    goTo(AppRoute::optimize);
    tab("optimize.cleanup")->setFocus(Qt::MouseFocusReason);
    for (const auto& [key, identifier, expected] :
         {std::tuple{Qt::Key_Right, "optimize.ai-advisor", AppRoute::aiAdvisor},
          {Qt::Key_Right, "optimize.ask-ai", AppRoute::chat},
          {Qt::Key_Left, "optimize.ai-advisor", AppRoute::aiAdvisor},
          {Qt::Key_Left, "optimize.cleanup", AppRoute::optimize},
          {Qt::Key_Left, "optimize.recommended", AppRoute::optimizationSuggestions}}) {
        press(key);
        EXPECT_EQ(route(), expected);
        EXPECT_EQ(focused(), QLatin1String(identifier));
        EXPECT_TRUE(QApplication::focusWidget()->isVisible());
        EXPECT_TRUE(isRinged(*tab(identifier), CrestTheme::current().accentText));
    }
}

TEST_F(WorkspaceBarTest, AChosenStepTakesTheFocusOnItsPage) {
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
    machine.monitor().actions().review.selectTopApp();
    settle();
    QScrollArea* area = &scrollAreaAround(*visible("optimize.workspace"));
    area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
    ASSERT_GT(area->verticalScrollBar()->value(), 100);
    goTo(AppRoute::chat);
    click("optimize.cleanup");
    const QRect place(tab("optimize.cleanup")->mapTo(area->viewport(), QPoint()),
                      tab("optimize.cleanup")->size());
    EXPECT_TRUE(area->viewport()->rect().contains(place));
}

TEST_F(WorkspaceBarTest, OtherWaysToARouteDoNotMoveTheFocus) {
    showWithSample();
    goTo(AppRoute::optimize);
    visible("page.refresh")->setFocus(Qt::TabFocusReason);
    goTo(AppRoute::chat);
    EXPECT_EQ(focused(), u"page.refresh"_s);
}

TEST_F(WorkspaceBarTest, IsAnAccessibleGroup) {
    showWithSample();
    goTo(AppRoute::optimize);
    QAccessibleInterface* bar =
        QAccessible::queryAccessibleInterface(visible("optimize.workspace"));
    EXPECT_EQ(bar->role(), QAccessible::Grouping);
    EXPECT_EQ(bar->text(QAccessible::Name), u"Optimize Workspace"_s);
    EXPECT_EQ(tab("optimize.cleanup")->accessibleDescription(),
              u"2 of 4. "_s + workspaceLine(AppRoute::optimize));
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
