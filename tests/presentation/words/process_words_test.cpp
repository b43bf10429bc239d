#include "presentation/words/process_words.h"

#include <gmock/gmock.h>

#include "sampling/process_details.h"
#include "tests/support/process_row.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

const ProcessDetail script{
    .owner = "root", .shortName = "bash", .argument = "a.sh", .commandLine = "bash a.sh -v"};

TEST(ProcessWords, TellPIDUserAndArgument) {
    const ProcessSample row = processRow(81200, "/bin/bash");
    EXPECT_EQ(process_words::note(row, nullptr), u"81200"_s);
    EXPECT_EQ(process_words::note(row, &script), u"81200 · root · a.sh"_s);
    ProcessDetail own = script;
    own.owner.clear();
    EXPECT_EQ(process_words::note(row, &own), u"81200 · a.sh"_s);
    const ProcessDetail none;
    EXPECT_EQ(process_words::note(row, &none), u"81200"_s);
    EXPECT_EQ(process_words::spoken(row, &script),
              QStringList({u"PID 81200"_s, u"root"_s, u"a.sh"_s}));
}

TEST(ProcessWords, TheToolTipHasTheCommandLine) {
    const ProcessSample row = processRow(812, "/bin/bash");
    EXPECT_EQ(process_words::toolTip(row, nullptr), u"PID 812\n/bin/bash"_s);
    EXPECT_EQ(process_words::toolTip(row, &script), u"PID 812 · root\n/bin/bash\nbash a.sh -v"_s);
    ProcessDetail same;
    same.commandLine = "/bin/bash";
    EXPECT_EQ(process_words::toolTip(row, &same), u"PID 812\n/bin/bash"_s);
    EXPECT_EQ(process_words::commandLine(row, &script), u"bash a.sh -v"_s);
    EXPECT_EQ(process_words::commandLine(row, nullptr), u"/bin/bash"_s);
    const ProcessDetail none;
    EXPECT_EQ(process_words::commandLine(row, &none), u"/bin/bash"_s);
}

TEST(ProcessWords, ShowNoHiddenCharacters) {
    const ProcessDetail hostile{.owner = "r\noot",
                                .shortName = {},
                                .argument = "a\u202Eb",
                                .commandLine = "x\u200By\n812 · root"};
    const ProcessSample row = processRow(812, "/bin/x");
    EXPECT_EQ(process_words::note(row, &hostile), u"812 · r\uFFFDoot · a\uFFFDb"_s);
    EXPECT_EQ(process_words::toolTip(row, &hostile),
              u"PID 812 · r\uFFFDoot\n/bin/x\nx\uFFFDy\uFFFD812 · root"_s);
}

}  // namespace
}  // namespace tallowcrest
