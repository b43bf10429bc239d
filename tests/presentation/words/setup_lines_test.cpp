#include "presentation/words/setup_lines.h"

#include <gmock/gmock.h>

#include "presentation/words/update_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

TEST(SetupLines, SixRowsWordForWord) {
    EXPECT_THAT(
        setupLines("/Applications", "owner"),
        testing::ElementsAre(
            SetupLine{u"Install"_s,
                      u"Use the header Install menu to copy Tallowcrest to "
                      "/Applications and enable launch at login."_s},
            SetupLine{u"SSH User"_s, u"Set the remote Mac short name. Current value: owner"_s},
            SetupLine{u"Tailscale"_s,
                      u"Scan remote Macs after Tailscale is healthy and SSH is connected."_s},
            SetupLine{u"Never Quit"_s,
                      u"Protect app groups like Docker, audio tools, or browsers "
                      "before using quit actions."_s},
            SetupLine{u"Auto Rules"_s,
                      u"Auto-select is safe. Auto-purge and auto-scan are "
                      "optional and off by default."_s},
            SetupLine{u"Diagnostics"_s, u"Use Export to save reports in outputs/reports."_s}));
}

TEST(SetupLines, WhatIsInstalledForAllUsersIsOnlyStartedAtLogin) {
    EXPECT_EQ(
        setupLines("", "owner").front(),
        (SetupLine{u"Install"_s, u"Use the header Install menu to enable launch at login."_s}));
}

TEST(UpdateLines, TellHowMuchHasArrived) {
    EXPECT_EQ(updateDownloadLine("1.2", 0, std::nullopt),
              u"Downloading Tallowcrest Pro 1.2 · 0 MB"_s);
    EXPECT_EQ(updateDownloadLine("1.2", 12UL << 20U, 80UL << 20U),
              u"Downloading Tallowcrest Pro 1.2 · 12 MB of 80 MB"_s);
    EXPECT_EQ(updateDownloadLine("1\n2" + std::string(99, '3'), 0, std::nullopt),
              u"Downloading Tallowcrest Pro 1\uFFFD2"_s + QString(37, u'3') + u"… · 0 MB"_s);
}

}  // namespace
}  // namespace tallowcrest
