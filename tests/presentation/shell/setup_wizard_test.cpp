#include "presentation/shell/setup_wizard.h"

#include <set>

#include <QPushButton>
#include <QScrollArea>

#include "core/settings/settings_owner.h"
#include "presentation/widgets/card.h"
#include "tests/presentation/shown_texts.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_installation_files.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class SetupWizardTest : public WindowFixture {
protected:
    SetupWizardTest() {
        const LinuxInstallPlaces places{.home = "/home/o",
                                        .data = "/home/o/.local/share",
                                        .configuration = "/home/o/.config",
                                        .program = "/unpacked"};
        machine.install = {std::make_shared<FakeInstallationFiles>(),
                           linuxInstallPlan(places),
                           linuxLoginPlan(places),
                           {}};
    }

    SetupWizard& wizard() { return *window().findChild<SetupWizard*>(); }
    bool isOpen() {
        const auto* found = window().findChild<SetupWizard*>();
        return found != nullptr && found->isVisible();
    }
    void openWizard(const QSize& size = {900, 600}) {
        window().resize(size);
        if (!window().isVisible()) {
            showWithSample();
        }
        window().state().navigation.setShowSetupWizard(true);
        settle();
        ASSERT_TRUE(isOpen());
        ASSERT_TRUE(QTest::qWaitForWindowActive(&wizard()));
    }
};

TEST_F(SetupWizardTest, BeginsWithItsTitleAndWhatItIsFor) {
    openWizard();
    std::vector<std::string> texts = shownTexts(wizard());
    ASSERT_GE(texts.size(), 2U);
    texts.resize(2);
    EXPECT_THAT(texts, testing::ElementsAre("Set Up Tallowcrest",
                                            "A quick pass through the settings that make this "
                                            "useful every day."));
}

// The keyboard -----------------------------------------------------------------------------------

TEST_F(SetupWizardTest, TheKeyboardBeginsAtDoneAndTabGoesRound) {
    openWizard();
    EXPECT_EQ(tabOrder(3), u"setup.done setup.launch-at-login setup.done"_s);
    ASSERT_EQ(QApplication::focusWidget()->objectName(), u"setup.launch-at-login"_s);
    QStringList back;
    for (int presses = 0; presses < 3; ++presses) {
        press(Qt::Key_Backtab, Qt::ShiftModifier);
        back.append(QApplication::focusWidget()->objectName());
    }
    EXPECT_EQ(back.join(u' '), u"setup.done setup.launch-at-login setup.done"_s);
}

TEST_F(SetupWizardTest, ReturnPressesTheButtonThatHasTheFocus) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        openWizard();
        visible("setup.launch-at-login")->setFocus();
        press(key);
        machine.finishSamples();
        settle();
        EXPECT_TRUE(isOpen());
        EXPECT_EQ(textOf("setup.last-action"), u"Enabled launch at login."_s);
        EXPECT_FALSE(machine.monitor().settings().firstRunComplete);
        visible("setup.done")->setFocus();
        press(key);
        EXPECT_FALSE(isOpen());
        EXPECT_TRUE(machine.monitor().settings().firstRunComplete);
        machine.monitor().settingsOwner().set(&Settings::firstRunComplete, false);
    }
}

TEST_F(SetupWizardTest, EachControlHasANameADescriptionAndAUniqueIdentifier) {
    openWizard();
    std::set<QString> identifiers;
    for (const QWidget* each : wizard().findChildren<QWidget*>()) {
        const bool isControl = qobject_cast<const QAbstractButton*>(each) != nullptr ||
                               each->focusPolicy() != Qt::NoFocus;
        if (!each->isVisible() || !isControl || each->inherits("QScrollBar")) {
            continue;
        }
        EXPECT_FALSE(each->accessibleName().isEmpty()) << each->objectName().toStdString();
        EXPECT_FALSE(each->accessibleDescription().isEmpty()) << each->objectName().toStdString();
        EXPECT_TRUE(identifiers.insert(each->objectName()).second)
            << each->objectName().toStdString();
    }
    EXPECT_EQ(identifiers, (std::set{u"setup.done"_s, u"setup.launch-at-login"_s}));
    EXPECT_EQ(wizard().accessibleName(), u"Set Up Tallowcrest"_s);
}

TEST_F(SetupWizardTest, TheKeysReachTheLastRowOfASmallWindow) {
    openWizard({640, 480});
    auto* area = wizard().findChild<QScrollArea*>();
    const ElidedLabel* last = area->findChildren<ElidedLabel*>().last();
    ASSERT_EQ(last->text(), u"Use Export to save reports in outputs/reports."_s);
    ASSERT_LT(last->visibleRegion().boundingRect().height(), last->height());
    press(Qt::Key_End);
    EXPECT_EQ(last->visibleRegion().boundingRect().height(), last->height());
}

// Sizes ------------------------------------------------------------------------------------------

TEST_F(SetupWizardTest, NothingIsCutOffAtAnyWindowSize) {
    for (const QSize& size : {QSize(640, 480), QSize(900, 600), QSize(1080, 720)}) {
        SCOPED_TRACE(size.width());
        openWizard(size);
        EXPECT_LE(wizard().width(), size.width());
        EXPECT_LE(wizard().height(), size.height());
        const QWidget* done = visible("setup.done");
        EXPECT_EQ(done->visibleRegion().boundingRect(), done->rect());
        for (const QWidget* each : wizard().findChildren<QWidget*>()) {
            if (!each->isVisible() || each->inherits("QScrollBar")) {
                continue;
            }
            const bool isScrolled =
                each->parentWidget()->objectName() == u"qt_scrollarea_viewport"_s;
            const QRect room = each->parentWidget()->rect();
            EXPECT_TRUE(isScrolled ? each->width() <= room.width()
                                   : room.contains(each->geometry()))
                << each->metaObject()->className() << ' ' << each->objectName().toStdString();
            EXPECT_GE(each->width(), each->minimumSizeHint().width())
                << each->metaObject()->className() << ' ' << each->objectName().toStdString();
            if (const auto* label = qobject_cast<const ElidedLabel*>(each)) {
                EXPECT_FALSE(label->shownLines().join(u' ').contains(u'…'))
                    << label->text().toStdString();
            }
        }
        press(Qt::Key_Escape);
        ASSERT_FALSE(isOpen());
    }
}

}  // namespace
}  // namespace tallowcrest
