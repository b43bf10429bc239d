#include "remote/remote_sample.h"

#include <optional>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

TEST(RemoteSample, ReadsTheOutputOfTheScript) {
    const RemoteSample sample = parseRemoteSample(
        "cpu=640\nmem=42\ncores=8\nos=15.1\ntopcpu=99.5% /usr/sbin/mds_stores\n"
        "topmem=812MB /Applications/Arc.app/Contents/MacOS/Arc\n"
        "proc=812|99.5|120|/usr/sbin/mds_stores\nproc=77|3.0|812|/Applications/Arc Browser\n");
    EXPECT_EQ(sample.cpuPercent(), 80.0);
    EXPECT_EQ(sample.memoryPercent(), 42.0);
    EXPECT_EQ(sample.value("os"), "15.1");
    EXPECT_EQ(sample.value("topcpu"), "99.5% /usr/sbin/mds_stores");
    EXPECT_EQ(sample.value("topmem"), "812MB /Applications/Arc.app/Contents/MacOS/Arc");
    EXPECT_THAT(sample.processes,
                ElementsAre(RemoteProcess{812, 99.5, 120.0, "/usr/sbin/mds_stores"},
                            RemoteProcess{77, 3.0, 812.0, "/Applications/Arc Browser"}));
}

TEST(RemoteSample, OnlyALineWithTwoPiecesSetsAKey) {
    struct Row {
        const char* output;
        const char* key;
        std::optional<std::string> value;
    };
    for (const Row& each : {
             Row{"os=15.1", "os", "15.1"},
             Row{"os=15.1\nos=15.2\n", "os", "15.2"},
             Row{"os=15.1\nos=\n", "os", "15.1"},
             Row{"os=a=b", "os", "a=b"},
             Row{"os==b", "os", "=b"},
             Row{"\n\nos=15.1\n\n", "os", "15.1"},
             Row{"os= ", "os", " "},
             Row{" os=15.1", "os", std::nullopt},
             Row{"os=", "os", std::nullopt},
             Row{"os", "os", std::nullopt},
             Row{"=15.1", "", std::nullopt},
             Row{"=os=15.1", "os", std::nullopt},
             Row{"=", "", std::nullopt},
             Row{"", "os", std::nullopt},
             Row{"Warning: a banner\nos=15.1\nhalf a li", "os", "15.1"},
         }) {
        EXPECT_EQ(parseRemoteSample(each.output).value(each.key), each.value) << each.output;
    }
    EXPECT_THAT(parseRemoteSample("a=1\nb\nc=\n").values, ElementsAre(Pair("a", "1")));
}

TEST(RemoteSample, TheLoadIsSharedByTheCores) {
    struct Row {
        const char* output;
        std::optional<double> percent;
    };
    for (const Row& each : {
             Row{"cpu=640\ncores=8", 80.0},
             Row{"cpu=900\ncores=8", 100.0},
             Row{"cpu=40", 40.0},
             Row{"cpu=40\ncores=0", 40.0},
             Row{"cpu=40\ncores=-4", 40.0},
             Row{"cpu=40\ncores=0.5", 40.0},
             Row{"cpu=40\ncores=eight", 40.0},
             Row{"cpu=40\ncores= 8", 40.0},
             Row{"cpu=40\ncores=inf", 40.0},
             Row{"cpu=40\ncores=1e300", 40.0 / 1e12},
             Row{"cpu=-40\ncores=2", -20.0},
             Row{"cpu=0", 0.0},
             Row{"cpu=1.5e1", 15.0},
             Row{"cpu=+15", 15.0},
             Row{"cpu=1e300\ncores=8", 100.0},
             Row{"cores=8", std::nullopt},
             Row{"cpu=\ncores=8", std::nullopt},
             Row{"cpu= 40", std::nullopt},
             Row{"cpu=\t40", std::nullopt},
             Row{"cpu=40 ", std::nullopt},
             Row{"cpu=40\r\n", std::nullopt},
             Row{"cpu=40%", std::nullopt},
             Row{"cpu=12,5", std::nullopt},
             Row{"cpu=0x10", std::nullopt},
             Row{"cpu=nan", std::nullopt},
             Row{"cpu=inf", std::nullopt},
             Row{"cpu=-infinity", std::nullopt},
             Row{"cpu=1e999", std::nullopt},
         }) {
        EXPECT_EQ(parseRemoteSample(each.output).cpuPercent(), each.percent) << each.output;
    }
}

TEST(RemoteSample, TheMemoryIsTakenAsItIs) {
    struct Row {
        const char* output;
        std::optional<double> percent;
    };
    for (const Row& each :
         {Row{"mem=42", 42.0}, Row{"mem=142", 142.0}, Row{"mem=-3", -3.0}, Row{"mem=1e300", 1e12},
          Row{"mem=-1e300", -1e12}, Row{"mem=", std::nullopt}, Row{"cpu=4", std::nullopt},
          Row{"mem=nan", std::nullopt}, Row{"mem=4 2", std::nullopt}}) {
        EXPECT_EQ(parseRemoteSample(each.output).memoryPercent(), each.percent) << each.output;
    }
}

TEST(RemoteSample, ARowNeedsFourPiecesAndItsNumbers) {
    for (const char* good : {"proc=1|2|3|x", "proc=1|2.0|3e0|x", "proc=+1|2|3|x"}) {
        EXPECT_THAT(parseRemoteSample(good).processes, ElementsAre(RemoteProcess{1, 2.0, 3.0, "x"}))
            << good;
    }
    for (const char* bad :
         {"proc=", "proc=1", "proc=1|2|3", "proc=|2|3|x", "proc=x|2|3|x", "proc=1.0|2|3|x",
          "proc=0x1|2|3|x", "proc= 1|2|3|x", "proc=1|x|3|x", "proc=1||3|x", "proc=1|2||x",
          "proc=1|2|nan|x", "proc=1|inf|3|x", "proc=1|2 |3|x", "proc=99999999999999999999|2|3|x",
          " proc=1|2|3|x", "Proc=1|2|3|x", "proc:1|2|3|x"}) {
        EXPECT_THAT(parseRemoteSample(bad).processes, IsEmpty()) << bad;
    }
    EXPECT_THAT(
        parseRemoteSample("proc=7|1|2|a|b |c\nproc=x|1|2|d\nproc=-1|-2|1e300|\n").processes,
        ElementsAre(RemoteProcess{7, 1.0, 2.0, "a|b |c"}, RemoteProcess{-1, -2.0, 1e12, ""}));
}

TEST(RemoteSample, RowsBeyondAnyScriptAreNotKept) {
    std::string output;
    for (int i = 0; i < 50000; ++i) {
        output += "proc=" + std::to_string(i) + "|1|2|x\n";
    }
    const RemoteSample sample = parseRemoteSample(output + "mem=5");
    EXPECT_THAT(sample.processes, SizeIs(maximumRemoteProcesses));
    EXPECT_EQ(sample.processes.back().pid, 99);
    EXPECT_EQ(sample.memoryPercent(), 5.0);
}

TEST(RemoteSample, KeysBeyondAnyScriptAreNotKept) {
    std::string output = "mem=4\n";
    for (int i = 0; i < 50000; ++i) {
        output += std::to_string(i) + "=1\n";
    }
    const RemoteSample sample = parseRemoteSample(output + "os=15.1\nmem=5");
    EXPECT_THAT(sample.values, SizeIs(maximumRemoteValues));
    EXPECT_EQ(sample.value("os"), std::nullopt);
    EXPECT_EQ(sample.memoryPercent(), 5.0);
}

TEST(RemoteSample, LinesLongerThanAnyPathAreSkipped) {
    const std::string longest = "os=" + std::string(longestRemoteLine - 3, 'x');
    EXPECT_EQ(parseRemoteSample(longest).value("os"), longest.substr(3));
    EXPECT_EQ(parseRemoteSample(longest + "x\nmem=5").values.size(), 1U);
    EXPECT_THAT(parseRemoteSample("proc=7|1|2|" + std::string(longestRemoteLine, 'x')).processes,
                IsEmpty());
}

}  // namespace
}  // namespace tallowcrest
