#include "presentation/shell/settings/local_mac_tab.h"

#include <QPushButton>
#include <QSignalSpy>

#include "tests/presentation/shell/settings/tab_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class LocalMacTabTest : public TabFixture<LocalMacTab> {
protected:
    LocalMacTabTest() : TabFixture(new QWidget, new QWidget) {}
};

TEST_F(LocalMacTabTest, EachButtonHasItsWordsAndItsSignal) {
    QStringList wanted;
    const auto record = [&wanted](const char* what) {
        return [&wanted, what] { wanted.append(QString::fromLatin1(what)); };
    };
    QObject::connect(&tab, &LocalMacTab::installWanted, record("install"));
    QObject::connect(&tab, &LocalMacTab::launchAtLoginWanted, &tab, [&](bool isEnabled) {
        wanted.append(isEnabled ? u"login"_s : u"no login"_s);
    });
    QObject::connect(&tab, &LocalMacTab::updateCheckWanted, record("check"));
    QObject::connect(&tab, &LocalMacTab::setupWizardWanted, record("wizard"));
    for (const auto& [identifier, words, signal] :
         {std::tuple{"settings.install", u"Install to Applications"_s, u"install"_s},
          {"settings.enable-launch-at-login", u"Enable Launch at Login"_s, u"login"_s},
          {"settings.disable-launch-at-login", u"Disable Launch at Login"_s, u"no login"_s},
          {"settings.check-for-updates", u"Check for Updates…"_s, u"check"_s},
          {"settings.setup-wizard", u"Setup Wizard"_s, u"wizard"_s}}) {
        EXPECT_EQ(visible<QPushButton>(identifier)->text(), words);
        click(identifier);
        EXPECT_EQ(wanted.takeLast(), signal);
    }
    EXPECT_EQ(textOf("settings.updates.words"),
              u"Tallowcrest Pro checks for signed updates automatically."_s);
}

TEST_F(LocalMacTabTest, WhatIsUnderWayCannotBeBegunAgain) {
    const auto enabled = [this] {
        QStringList identifiers;
        for (const char* each :
             {"settings.install", "settings.enable-launch-at-login",
              "settings.disable-launch-at-login", "settings.check-for-updates"}) {
            if (visible<QPushButton>(each)->isEnabled()) {
                identifiers.append(QString::fromLatin1(each).section(u'.', 1));
            }
        }
        return identifiers.join(u' ');
    };
    tab.show({.isInstalling = true});
    EXPECT_EQ(enabled(), u"enable-launch-at-login disable-launch-at-login check-for-updates"_s);
    tab.show({.isChangingLogin = true});
    EXPECT_EQ(enabled(), u"install check-for-updates"_s);
    tab.show({.isChecking = true});
    EXPECT_EQ(enabled(), u"install enable-launch-at-login disable-launch-at-login"_s);
}

TEST_F(LocalMacTabTest, ExpandsAndCollapsesTheSections) {
    const QSignalSpy expansions(&tab, &LocalMacTab::expandAllWanted);
    const QSignalSpy collapses(&tab, &LocalMacTab::collapseAllWanted);
    EXPECT_EQ(headings().join(u'|'), u"Startup And Layout"_s);
    EXPECT_EQ(visible<QPushButton>("settings.collapse-sections")->text(),
              u"Collapse All Sections"_s);
    EXPECT_EQ(visible<QPushButton>("settings.expand-sections")->text(), u"Expand All Sections"_s);
    click("settings.collapse-sections");
    EXPECT_EQ(collapses.count(), 1);
    EXPECT_EQ(expansions.count(), 0);
    click("settings.expand-sections");
    EXPECT_EQ(expansions.count(), 1);
}

}  // namespace
}  // namespace tallowcrest
