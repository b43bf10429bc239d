#include "presentation/screens/shared/screen.h"
#include "presentation/widgets/elided_label.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class EveryPageTest : public WindowFixture {};

TEST_F(EveryPageTest, EveryRouteSaysThatItSamplesUntilTheFirstSample) {
    show();
    const auto saysSo = [this] {
        for (const auto* screen : window().findChildren<Screen*>()) {
            for (const auto* label : screen->findChildren<ElidedLabel*>()) {
                if (label->isVisible() && label->text() == u"Sampling this Mac..."_s) {
                    return true;
                }
            }
        }
        return false;
    };
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        EXPECT_TRUE(saysSo()) << title(each);
    }
    machine.finishSamples();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        EXPECT_FALSE(saysSo()) << title(each);
    }
}

TEST_F(EveryPageTest, TheStepsOfOptimizeHaveTheWorkspaceBar) {
    showWithSample();
    for (const AppRoute each : {AppRoute::optimize, AppRoute::optimizationSuggestions,
                                AppRoute::aiAdvisor, AppRoute::chat}) {
        goTo(each);
        EXPECT_NE(visible("optimize.workspace"), nullptr) << title(each);
    }
}

TEST_F(EveryPageTest, OtherRoutesHaveNoWorkspaceBar) {
    showWithSample();
    for (const AppRoute each : {AppRoute::remoteMacs, AppRoute::history, AppRoute::settings}) {
        goTo(each);
        EXPECT_EQ(visible("optimize.workspace"), nullptr) << title(each);
    }
}

}  // namespace
}  // namespace tallowcrest
