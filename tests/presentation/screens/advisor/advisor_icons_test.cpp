#include <gtest/gtest.h>

#include "core/settings/settings_owner.h"
#include "tests/presentation/screens/advisor/advisor_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class AdvisorIconsTest : public AdvisorFixture {
protected:
    /// Whether a button shows the icon `name`.
    bool hasButtonIcon(const char* identifier, const QString& name) {
        const auto pixels = [](const QIcon& icon) {
            return icon.pixmap(spacing::iconSmall).toImage();
        };
        return hasIcon(name) && pixels(button(identifier).icon()) == pixels(themedIcon(name));
    }
};

TEST_F(AdvisorIconsTest, EachCardHasItsOwn) {
    showAdvisor();
    EXPECT_EQ(iconOf("ai.lead"), u"lock.shield"_s);
    EXPECT_EQ(iconOf("ai.guidance"), u"sparkle"_s);
    EXPECT_EQ(iconOf("ai.suggestions"), u"checklist.checked"_s);
    EXPECT_EQ(iconOf("ai.trust"), u"checkmark.shield"_s);
    EXPECT_EQ(iconOf("ai.drafts"), u"slider.horizontal.3"_s);
    EXPECT_TRUE(hasButtonIcon("ai.preview-payload", u"doc.text.magnifyingglass"_s));
}

TEST_F(AdvisorIconsTest, OnlyAServiceThatCanBeAskedHasTheSeal) {
    showAdvisor();
    EXPECT_EQ(iconOf("ai.connection-icon"), u"desktopcomputer"_s);
    advisor().provider.setOpenAIKeyInput(SecretText("sk-secret"));
    advisor().provider.saveOpenAIKey();
    finishWork();
    EXPECT_EQ(iconOf("ai.connection-icon"), u"checkmark.seal.fill"_s);
    machine.monitor().settingsOwner().set(&Settings::aiEndpoint, "http://example.org");
    settle();
    EXPECT_EQ(iconOf("ai.connection-icon"), u"desktopcomputer"_s);
}

TEST_F(AdvisorIconsTest, AnAnalysisUnderWayHasAnHourglass) {
    showConnected();
    EXPECT_TRUE(hasButtonIcon("ai.analyze", u"sparkle.magnifyingglass"_s));
    EXPECT_FALSE(hasButtonIcon("ai.analyze", u"hourglass"_s));
    click("ai.analyze");
    EXPECT_TRUE(hasButtonIcon("ai.analyze", u"hourglass"_s));
    finishWork();
    EXPECT_TRUE(hasButtonIcon("ai.analyze", u"sparkle.magnifyingglass"_s));
}

}  // namespace
}  // namespace tallowcrest
