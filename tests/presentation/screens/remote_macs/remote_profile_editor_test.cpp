#include "presentation/screens/remote_macs/remote_profile_editor.h"

#include <QAccessible>
#include <QLineEdit>
#include <QVBoxLayout>

#include "presentation/widgets/step_slider.h"
#include "presentation/widgets/toggle_switch.h"
#include "tests/presentation/screens/remote_macs/activate.h"
#include "tests/presentation/widget_fixture.h"
#include "tests/presentation/widgets/paint_count.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The editor over a profile that stores as `RemoteProfiles` does.
class RemoteProfileEditorTest : public WidgetFixture {
protected:
    RemoteProfileEditorTest() {
        QObject::connect(
            &editor, &RemoteProfileEditor::changed, [this](const RemoteProfileChange& change) {
                if (change.nickname) {
                    stored.nickname =
                        QString::fromStdString(*change.nickname).trimmed().toStdString();
                    typed.push_back(*change.nickname);
                }
                if (change.role) {
                    stored.role = QString::fromStdString(*change.role).trimmed().toStdString();
                    typed.push_back("role " + *change.role);
                }
                stored.warningThreshold = change.warningThreshold.value_or(stored.warningThreshold);
                permissions.push_back(change.allowRemotePurge);
                thresholds.push_back(change.warningThreshold);
                if (echoes) {
                    editor.show(stored);
                }
            });
        editor.resize(600, 200);
        showUnseen(editor);
        editor.show(stored);
    }

    QWidget& root() override { return editor; }
    QLineEdit& nickname() { return *visible<QLineEdit>("probe.nickname"); }
    QLineEdit& role() { return *visible<QLineEdit>("probe.role"); }
    StepSlider& threshold() { return *visible<StepSlider>("probe.threshold"); }
    ToggleSwitch& permission() { return *visible<ToggleSwitch>("probe.allow-remote-purge"); }

    RemoteProfile stored{"studio-mac", "studio-mac", "Mac", 80.0, false};
    bool echoes = true;
    std::vector<std::string> typed;
    std::vector<std::optional<double>> thresholds;
    std::vector<std::optional<bool>> permissions;
    RemoteProfileEditor editor{u"probe"_s};
};

TEST_F(RemoteProfileEditorTest, ShowsTheProfileWithoutChangingIt) {
    EXPECT_EQ(nickname().text(), u"studio-mac"_s);
    EXPECT_EQ(role().text(), u"Mac"_s);
    EXPECT_EQ(threshold().scale().valueAt(threshold().value()), 80.0);
    EXPECT_FALSE(permission().isChecked());
    EXPECT_EQ(textOf("probe.allow-remote-purge.state"), u"Off. Remote Purge is refused."_s);
    stored = {"studio-mac", "Studio", "Render box", 91.0, true};
    editor.show(stored);
    EXPECT_EQ(nickname().text(), u"Studio"_s);
    EXPECT_EQ(role().text(), u"Render box"_s);
    EXPECT_EQ(threshold().scale().valueAt(threshold().value()), 91.0);
    EXPECT_TRUE(permission().isChecked());
    EXPECT_EQ(textOf("probe.allow-remote-purge.state"), u"On. Each purge still asks first."_s);
    EXPECT_THAT(permissions, IsEmpty()) << "no change was emitted";
}

TEST_F(RemoteProfileEditorTest, EachKeyIsAChangeAndItsEchoLeavesTheFieldAlone) {
    ASSERT_NO_FATAL_FAILURE(activate(editor));
    nickname().setFocus();
    nickname().selectAll();
    QTest::keyClicks(&nickname(), u" my  "_s);
    EXPECT_THAT(typed, ElementsAre(" ", " m", " my", " my ", " my  "));
    EXPECT_EQ(stored.nickname, "my");
    EXPECT_EQ(nickname().text(), u" my  "_s);
    nickname().setCursorPosition(1);
    QTest::keyClicks(&nickname(), u"x"_s);
    EXPECT_EQ(nickname().cursorPosition(), 2);
    // An echo that is late has an older text.
    stored.nickname = "m";
    editor.show(stored);
    EXPECT_EQ(nickname().text(), u" xmy  "_s);
    nickname().clear();
    EXPECT_EQ(stored.nickname, "");
    EXPECT_EQ(nickname().text(), QString());
    role().setFocus();
    role().end(false);
    QTest::keyClicks(&role(), u"!"_s);
    EXPECT_EQ(typed.back(), "role Mac!");
}

TEST_F(RemoteProfileEditorTest, AFieldWithoutTheFocusFollowsTheProfile) {
    nickname().clearFocus();
    stored.nickname = "From elsewhere";
    editor.show(stored);
    EXPECT_EQ(nickname().text(), u"From elsewhere"_s);
}

TEST_F(RemoteProfileEditorTest, ATextSetByAssistiveTechnologyIsStored) {
    nickname().clearFocus();
    QAccessible::queryAccessibleInterface(&nickname())
        ->editableTextInterface()
        ->replaceText(0, 10, u"Spoken"_s);
    EXPECT_EQ(stored.nickname, "Spoken");
    EXPECT_EQ(nickname().text(), u"Spoken"_s);
}

TEST_F(RemoteProfileEditorTest, TheSliderGoesFrom65To95InStepsOf1) {
    EXPECT_EQ(threshold().scale().minimum, 65.0);
    EXPECT_EQ(threshold().scale().maximum, 95.0);
    QTest::keyClick(&threshold(), Qt::Key_Right);
    QTest::keyClick(&threshold(), Qt::Key_End);
    QTest::keyClick(&threshold(), Qt::Key_Home);
    EXPECT_THAT(thresholds, ElementsAre(81.0, 95.0, 65.0));
    EXPECT_EQ(textOf("probe.threshold.value"), u"65%"_s);
    // What the local threshold allows may be outside of the slider's range.
    stored.warningThreshold = 98.0;
    editor.show(stored);
    EXPECT_EQ(textOf("probe.threshold.value"), u"98%"_s);
}

TEST_F(RemoteProfileEditorTest, ThePermissionIsToggledOnlyByTheProfile) {
    click("probe.allow-remote-purge");
    EXPECT_THAT(permissions, ElementsAre(true));
    EXPECT_FALSE(permission().isChecked());
    stored.allowRemotePurge = true;
    editor.show(stored);
    click("probe.allow-remote-purge");
    EXPECT_THAT(permissions, ElementsAre(true, false));
}

TEST_F(RemoteProfileEditorTest, AHostileNameIsShownInOneBoundedLine) {
    nickname().clearFocus();
    stored.nickname = "<b>x</b>\n\u202E" + std::string(10'000, 'W');
    editor.show(stored);
    EXPECT_TRUE(nickname().text().startsWith(u"<b>x</b>\uFFFD\uFFFDW"_s));
    EXPECT_LE(nickname().text().size(), 256);
    EXPECT_THAT(typed, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest
