#include "integration/startup_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/install_plan.h"

namespace tallowcrest {
namespace {

using ::testing::HasSubstr;

TEST(StartupFiles, TheLaunchAgentHasThreeKeysInOrder) {
    EXPECT_EQ(launchAgent("/Applications/Tallowcrest Pro.app"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n"
              "<dict>\n"
              "\t<key>Label</key>\n"
              "\t<string>com.rowanhesket.tallowcrest.pro</string>\n"
              "\t<key>ProgramArguments</key>\n"
              "\t<array>\n"
              "\t\t<string>/usr/bin/open</string>\n"
              "\t\t<string>/Applications/Tallowcrest Pro.app</string>\n"
              "\t</array>\n"
              "\t<key>RunAtLoad</key>\n"
              "\t<true/>\n"
              "</dict>\n"
              "</plist>\n");
}

TEST(StartupFiles, APathCannotEndATextOfTheAgent) {
    EXPECT_THAT(launchAgent("/a</string>&b"),
                HasSubstr("\t\t<string>/a&lt;/string&gt;&amp;b</string>\n"));
}

TEST(StartupFiles, TheAutostartEntryStartsTheProgramIfItIsThere) {
    EXPECT_EQ(autostartEntry("/opt/tallowcrest"),
              "[Desktop Entry]\n"
              "Type=Application\n"
              "Name=Tallowcrest\n"
              "Comment=Watches this computer and says in plain words what it sees\n"
              "Exec=\"/opt/tallowcrest\"\n"
              "TryExec=/opt/tallowcrest\n"
              "Icon=tallowcrest\n"
              "Terminal=false\n"
              "StartupNotify=false\n");
    EXPECT_THAT(menuEntry("/opt/tallowcrest"), HasSubstr("\nCategories=System;Monitor;\n"));
}

TEST(StartupFiles, APathOfAnyBytesStaysOneArgument) {
    EXPECT_THAT(autostartEntry("/a b/$c`d\"e\\f%g"), HasSubstr(R"(Exec="/a b/\\$c\\`d\\"e\\\\f%%g")"
                                                               "\n"));
    EXPECT_THAT(autostartEntry("/a\nExec=b"), HasSubstr("\nExec=\"/a\\nExec=b\"\nTryExec=/a\\nE"));
}

TEST(StartupFiles, ADesktopTurnsAnEntryOffByAKeyOfItsGroup) {
    const std::string entry = autostartEntry("/opt/tallowcrest");
    for (const char* off :
         {"Hidden=true", "Hidden = true\r\n", " X-GNOME-Autostart-enabled =false\n",
          "\n[Other]\n[Desktop Entry]\nHidden=true\n"}) {
        EXPECT_TRUE(isTurnedOff(entry + off)) << off;
    }
    for (const char* on : {"", "Hidden=false\n", "X-GNOME-Autostart-enabled=true\n",
                           "#Hidden=true\n", "[Desktop Action a]\nHidden=true\n"}) {
        EXPECT_FALSE(isTurnedOff(entry + on)) << on;
    }
    EXPECT_FALSE(isTurnedOff("Hidden=true\n")) << "in no group";
    EXPECT_FALSE(isTurnedOff(launchAgent("/Applications/Tallowcrest Pro.app")));
}

TEST(InstallPlan, RemovesThePercentEncodingOfABundlesPath) {
    EXPECT_EQ(macOSInstallPlan("/A%20B/T%C3%A9.app/").bundle, "/A B/Té.app");
    EXPECT_EQ(macOSInstallPlan("/plain").bundle, "/plain");
    EXPECT_EQ(macOSInstallPlan("/").bundle, "/");
    for (const char* invalid : {"", "/a%", "/a%2", "/a%2x", "/a%x2", "/a%00b", "/a%-1"}) {
        EXPECT_EQ(macOSInstallPlan(invalid).bundle, "") << invalid;
        EXPECT_EQ(macOSLoginPlan(invalid, "/Users/o").running, "") << invalid;
    }
    for (const char* refused : {"/My%0AApps/T.app", "/My%01Apps/T.app", "/T.app%1F",
                                "/My%EF%BF%BEApps/T.app", "/T.app%EF%BF%BF"}) {
        EXPECT_EQ(macOSLoginPlan(refused, "/Users/o").running, "") << refused;
    }
    EXPECT_EQ(macOSLoginPlan("/%EF%BF%BD.app", "/Users/o").running, "/\uFFFD.app");
    EXPECT_EQ(macOSLoginPlan("/My%20Apps/T.app/", "/Users/o").running, "/My Apps/T.app");
    EXPECT_EQ(macOSLoginPlan("/%C3%84pps/T.app", "/Users/o").running, "/Äpps/T.app");
}

TEST(InstallPlan, ABundleIsFoundFromTheProgramInIt) {
    EXPECT_EQ(bundlePathOf("/My Apps/50% Té.app/Contents/MacOS/tallowcrest"),
              "/My%20Apps/50%25%20T%C3%A9.app/");
    for (const char* inNone : {"/opt/T.app/Contents/Helpers/tallowcrest", "/opt/tallowcrest",
                               "/tallowcrest", "/T.app/Contents/MacOS", ""}) {
        EXPECT_EQ(bundlePathOf(inNone), "") << inNone;
    }
    EXPECT_EQ(macOSInstallPlan(bundlePathOf("/a%20b/T.app/Contents/MacOS/t")).bundle,
              "/a%20b/T.app");
}

TEST(InstallPlan, WithoutAHomeDirectoryThereIsNone) {
    const LinuxInstallPlaces places{
        .home = "", .data = "/data", .configuration = "/c", .program = "/unpacked"};
    EXPECT_EQ(linuxInstallPlan(places).bundle, "");
    EXPECT_EQ(linuxInstallPlan(places).target, "");
    EXPECT_EQ(linuxLoginPlan(places).file, "");
    EXPECT_EQ(linuxLoginPlan(places).running, "");
    EXPECT_EQ(macOSLoginPlan("/Applications/Tallowcrest.app", "").file, "");
    EXPECT_EQ(macOSLoginPlan("/Applications/Tallowcrest.app", "").folder, "");
}

TEST(InstallPlan, NamesPlacesOutsideOfTheHomeDirectoryInFull) {
    const LinuxInstallPlaces places{
        .home = "/home/o", .data = "/data", .configuration = "/home/other/c", .program = ""};
    EXPECT_EQ(linuxLoginPlan(places).shownFolder, "/home/other/c/autostart");
    EXPECT_EQ(linuxLoginPlan(places).running, "");
    EXPECT_EQ(linuxInstallPlan(places).menuEntry, "/data/applications/tallowcrest.desktop");
    EXPECT_EQ(linuxInstallPlan(places).shownTarget, "~/.local/opt/tallowcrest");
}

}  // namespace
}  // namespace tallowcrest
