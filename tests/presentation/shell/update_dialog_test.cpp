#include "presentation/shell/update_dialog.h"

#include <QAction>
#include <QPushButton>

#include "core/settings/settings_owner.h"
#include "integration/integration.h"
#include "presentation/screens/shared/progress_row.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_update_ports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// The window of a program with an update feed.
class UpdateDialogTest : public WindowFixture {
protected:
    UpdateDialogTest() { machine.updates = updates.ports(); }

    ProUpdater& updater() { return machine.monitor().integration().updates; }
    UpdateDialog* dialog() {
        auto* found = window().findChild<UpdateDialog*>();
        return found != nullptr && found->isVisible() ? found : nullptr;
    }
    /// The titles of the shown buttons.
    QStringList buttons() {
        QStringList titles;
        for (const QPushButton* button : dialog()->findChildren<QPushButton*>()) {
            if (button->isVisible()) {
                titles.append(button->text());
            }
        }
        return titles;
    }
    void finishWork() {
        machine.finishSamples();
        settle();
    }
    /// Opens the window, whose first check finds the update.
    void showOffer() {
        show();
        finishWork();
        ASSERT_NE(dialog(), nullptr);
        setSettlingTime(*dialog(), std::chrono::milliseconds(0));
        waitForButtons();
    }
    void waitForButtons() {
        for (const QPushButton* button : dialog()->findChildren<QPushButton*>()) {
            QTRY_VERIFY(!button->isVisible() || button->isEnabled());
        }
    }
    void beginDownload() {
        showOffer();
        click("update.button.0");
        ASSERT_TRUE(updater().state().download);
    }

    FakeUpdates updates;
};

TEST_F(UpdateDialogTest, TheFirstAppearanceOfTheWindowLooksForUpdatesOnce) {
    updates.feed(41);
    show();
    EXPECT_TRUE(updater().state().isChecking);
    finishWork();
    EXPECT_EQ(dialog(), nullptr) << "a quiet check without an update";
    machine.monitor().settingsOwner().set(&Settings::lastUpdateCheck, 0.0);
    window().hide();
    window().show();
    settle();
    EXPECT_FALSE(updater().state().isChecking);
}

TEST_F(UpdateDialogTest, ShowsTheOfferWordForWord) {
    updates.feed(42, R"("releaseNotesURL": "https://notes.example/",)");
    showOffer();
    EXPECT_EQ(textOf("update.title"), u"Tallowcrest Pro 1.2 is available"_s);
    EXPECT_EQ(textOf("update.text"),
              u"Build 42 is newer than build 41. Tallowcrest will verify the notarized installer "
              "checksum before opening it."_s);
    EXPECT_EQ(buttons(), (QStringList{u"Download and Verify"_s, u"Later"_s, u"Release Notes"_s}));
    EXPECT_EQ(QApplication::focusWidget()->objectName(), u"update.button.1"_s);
    click("update.button.2");
    EXPECT_THAT(updates.opened, testing::ElementsAre("https://notes.example/"));
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_FALSE(updater().state().isChecking);
}

TEST_F(UpdateDialogTest, ClosingTheOfferMeansLater) {
    showOffer();
    EXPECT_EQ(buttons(), (QStringList{u"Download and Verify"_s, u"Later"_s}));
    QTest::keyClick(dialog(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_FALSE(updater().state().download);
    EXPECT_FALSE(updater().state().isChecking);
}

TEST_F(UpdateDialogTest, APressThatWasMeantForSomethingElseStartsNoDownload) {
    show();
    finishWork();
    ASSERT_NE(dialog(), nullptr);
    setSettlingTime(*dialog(), std::chrono::hours(1));
    for (const char* each : {"update.button.0", "update.button.1"}) {
        EXPECT_FALSE(visible<QPushButton>(each)->isEnabled());
        QTest::mouseClick(visible<QPushButton>(each), Qt::LeftButton);
    }
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        QTest::keyClick(dialog(), key);
    }
    settle();
    EXPECT_FALSE(updater().state().download);
    EXPECT_NE(dialog(), nullptr);
}

TEST_F(UpdateDialogTest, TabGoesThroughTheButtonsFromTheSafeOne) {
    updates.feed(42, R"("releaseNotesURL": "https://notes.example/",)");
    showOffer();
    EXPECT_EQ(tabOrder(4), u"update.button.1 update.button.2 update.button.0 update.button.1"_s);
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), u"update.button.0"_s);
}

TEST_F(UpdateDialogTest, ReturnPressesTheButtonThatHasTheFocus) {
    updates.feed(42, R"("releaseNotesURL": "https://notes.example/",)");
    show();
    finishWork();
    for (const char* each : {"update.button.1", "update.button.2", "update.button.0"}) {
        if (dialog() == nullptr) {
            updater().checkForUpdates();
            finishWork();
        }
        ASSERT_NE(dialog(), nullptr) << each;
        setSettlingTime(*dialog(), std::chrono::milliseconds(0));
        waitForButtons();
        visible(each)->setFocus();
        press(Qt::Key_Return);
        EXPECT_EQ(dialog(), nullptr) << each;
        EXPECT_EQ(updater().state().download.has_value(), each == std::string("update.button.0"));
    }
    EXPECT_THAT(updates.opened, testing::ElementsAre("https://notes.example/"));
}

TEST_F(UpdateDialogTest, EachButtonHasANameADescriptionAndAnIdentifier) {
    updates.feed(42, R"("releaseNotesURL": "https://notes.example/",)");
    showOffer();
    QStringList identifiers;
    for (const QWidget* each : dialog()->findChildren<QWidget*>()) {
        if (each->isVisible() && each->focusPolicy() != Qt::NoFocus) {
            EXPECT_FALSE(each->accessibleName().isEmpty()) << each->objectName().toStdString();
            EXPECT_FALSE(each->accessibleDescription().isEmpty())
                << each->objectName().toStdString();
            identifiers.append(each->objectName());
        }
    }
    EXPECT_EQ(identifiers.join(u' '), u"update.button.0 update.button.1 update.button.2"_s);
    EXPECT_EQ(dialog()->accessibleName(), u"Software Update"_s);
    EXPECT_THAT(dialog()->accessibleDescription().toStdString(),
                testing::StartsWith("Tallowcrest Pro 1.2 is available"));
}

TEST_F(UpdateDialogTest, TheOnlyButtonHasTheFocusOnceItCanBePressed) {
    updates.feed(41);
    show();
    finishWork();
    for (int round = 0; round < 2; ++round) {
        updater().checkForUpdates();
        finishWork();
        ASSERT_NE(dialog(), nullptr);
        setSettlingTime(*dialog(), std::chrono::milliseconds(0));
        waitForButtons();
        EXPECT_EQ(QApplication::focusWidget(), visible("update.button.0"));
        press(Qt::Key_Return);
        EXPECT_EQ(dialog(), nullptr);
    }
}

TEST_F(UpdateDialogTest, TheDownloadIsShownAndCanBeCanceled) {
    beginDownload();
    EXPECT_EQ(textOf("update.bar.progress"), u"Downloading Tallowcrest Pro 1.2 · 0 MB"_s);
    EXPECT_EQ(visible<QPushButton>("update.bar.progress-stop")->text(), u"Cancel"_s);
    EXPECT_EQ(visible<QPushButton>("update.bar.progress-stop")->accessibleName(),
              u"Cancel the download"_s);
    click("update.bar.progress-stop");
    EXPECT_EQ(textOf("update.bar.progress"), u"Stopping…"_s);
    finishWork();
    EXPECT_EQ(visible("update.bar"), nullptr);
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_THAT(updates.opened, testing::IsEmpty());
}

TEST_F(UpdateDialogTest, TheDownloadFitsOnEachRouteOfASmallWindow) {
    window().resize(640, 480);
    beginDownload();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        SCOPED_TRACE(std::string(title(each)));
        EXPECT_EQ(window().size(), QSize(640, 480));
        for (const char* part : {"update.bar", "update.bar.progress", "update.bar.progress-stop"}) {
            const QWidget* shown = visible(part);
            ASSERT_NE(shown, nullptr) << part;
            EXPECT_EQ(shown->visibleRegion().boundingRect(), shown->rect()) << part;
            EXPECT_GE(shown->height(), shown->minimumSizeHint().height()) << part;
        }
        EXPECT_GE(visible("update.bar.progress-stop")->width(),
                  visible("update.bar.progress-stop")->sizeHint().width());
    }
}

TEST_F(UpdateDialogTest, TheSettingsShowTheDownloadToo) {
    beginDownload();
    window().state().navigation.setSettingsTab(SettingsTabKind::localMac);
    window().state().navigation.setShowSettings(true);
    settle();
    EXPECT_EQ(textOf("settings.download-progress"), u"Downloading Tallowcrest Pro 1.2 · 0 MB"_s);
    click("settings.download-progress-stop");
    finishWork();
    EXPECT_EQ(visible("settings.download-progress"), nullptr);
}

TEST_F(UpdateDialogTest, CancelInTheSettingsPassesTheFocusToNoOtherButton) {
    beginDownload();
    window().state().navigation.setSettingsTab(SettingsTabKind::localMac);
    window().state().navigation.setShowSettings(true);
    settle();
    auto* cancel = visible<QPushButton>("settings.download-progress-stop");
    cancel->setFocus();
    finishWork();
    EXPECT_FALSE(cancel->isVisible()) << "the download has ended by itself";
    EXPECT_EQ(cancel->window()->focusWidget(), nullptr);
}

TEST_F(UpdateDialogTest, AFailedDownloadIsShownWithItsReason) {
    updates.image("short");
    beginDownload();
    finishWork();
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(textOf("update.title"), u"Update verification failed"_s);
    EXPECT_EQ(textOf("update.text"),
              u"The installer was not opened because it could not be downloaded and "
              "verified.\n\n"_s +
                  QString::fromUtf8(update_errors::corruptFile));
    EXPECT_EQ(buttons(), QStringList(u"OK"_s));
}

TEST_F(UpdateDialogTest, OneAlertFollowsTheOther) {
    updates.image("short");
    beginDownload();
    updater().checkForUpdates();
    finishWork();
    EXPECT_EQ(textOf("update.title"), u"Update verification failed"_s);
    setSettlingTime(*dialog(), std::chrono::milliseconds(0));
    QTRY_VERIFY(visible<QPushButton>("update.button.0")->isEnabled());
    click("update.button.0");
    EXPECT_EQ(textOf("update.title"), u"Tallowcrest Pro 1.2 is available"_s);
}

TEST_F(UpdateDialogTest, TheMenuSaysWhatBecameOfACheck) {
    updates.feed(41);
    show();
    finishWork();
    window().findChild<QAction*>(u"menu.check-for-updates"_s)->trigger();
    finishWork();
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(textOf("update.title"), u"Tallowcrest Pro is up to date"_s);
    EXPECT_EQ(textOf("update.text"), u"You’re running version 1.1 (build 41)."_s);
}

TEST_F(UpdateDialogTest, ClosingTheWindowAnswersNothingWithYes) {
    showOffer();
    window().close();
    settle();
    EXPECT_EQ(updater().alert(), nullptr);
    EXPECT_FALSE(updater().state().download);
}

}  // namespace
}  // namespace tallowcrest
