#include "presentation/screens/coming/coming_page.h"

#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class ComingPageTest : public WindowFixture {};

TEST_F(ComingPageTest, EveryRouteSaysThatItSamplesUntilTheFirstSample) {
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

TEST_F(ComingPageTest, TheWorkspaceBarIsAboveTheTextOnItsSteps) {
    showWithSample();
    for (const AppRoute each : {AppRoute::optimizationSuggestions, AppRoute::chat}) {
        goTo(each);
        SCOPED_TRACE(std::string(title(each)));
        const QString identifier = u"coming."_s + QString::fromUtf8(rawValue(each).data());
        const QWidget* bar = visible("optimize.workspace");
        const QWidget* card = visible(identifier.toLatin1().constData());
        ASSERT_NE(bar, nullptr);
        ASSERT_NE(card, nullptr);
        EXPECT_LT(bar->geometry().bottom(), card->y());
        EXPECT_TRUE(textOf((identifier + u".line"_s).toLatin1().constData())
                        .startsWith(u"Here you will "_s));
    }
}

TEST_F(ComingPageTest, OtherRoutesHaveNoWorkspaceBar) {
    showWithSample();
    for (const AppRoute each : {AppRoute::remoteMacs, AppRoute::history, AppRoute::settings}) {
        goTo(each);
        EXPECT_EQ(visible("optimize.workspace"), nullptr) << title(each);
    }
}

}  // namespace
}  // namespace tallowcrest
