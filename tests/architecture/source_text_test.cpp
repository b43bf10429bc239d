#include "tests/architecture/source_text.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest::architecture {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> targets(const std::string& text) {
    std::vector<std::string> result;
    for (const Include& include : includesIn(text)) {
        result.push_back(include.target);
    }
    return result;
}

TEST(SourceText, FindsIncludesHoweverTheyAreSpaced) {
    EXPECT_THAT(targets("#include \"core/a.h\"\n  #  include\t<vector>\n#include<string>"),
                ElementsAre("core/a.h", "vector", "string"));
}

TEST(SourceText, TellsTheLineAndTheKindOfAnInclude) {
    const auto includes = includesIn("\n/* two\nlines */\n#include \"core/a.h\"\n#include <map>\n");
    ASSERT_THAT(includes, SizeIs(2));
    EXPECT_EQ(includes[0].line, 4U);
    EXPECT_TRUE(includes[0].quoted);
    EXPECT_EQ(includes[1].line, 5U);
    EXPECT_FALSE(includes[1].quoted);
}

TEST(SourceText, IgnoresIncludesInCommentsAndStrings) {
    EXPECT_THAT(targets("// #include \"a/a.h\"\n"
                        "/*\n#include \"b/b.h\"\n*/\n"
                        "auto text = R\"x(\n#include \"c/c.h\"\n)\" )x\";\n"
                        "auto slashes = \"/*\";\n"
                        "auto mark = '\"';\n"
                        "auto number = 1'000'000; // '\n"
                        "#include \"d/d.h\"\n"
                        "auto end = \"*/\";\n"),
                ElementsAre("d/d.h"));
}

TEST(SourceText, KeepsTheNumberOfLines) {
    EXPECT_EQ(withoutComments("a/*\n\n*/b//c\nd"), "a  \n\n  b   \nd");
}

TEST(SourceText, AnUnclosedCommentReachesToTheEnd) {
    EXPECT_THAT(targets("/* #include <a>\n#include <b>\n"), IsEmpty());
}

TEST(SourceText, JoinsContinuedConditions) {
    const auto conditions =
        conditionsIn("int a;\n#if defined(ONE) || \\\n    defined(TWO)\n#endif\n");
    ASSERT_THAT(conditions, SizeIs(1));
    EXPECT_EQ(conditions[0].line, 2U);
    EXPECT_THAT(identifiersIn(conditions[0].text),
                ElementsAre("if", "defined", "ONE", "defined", "TWO"));
}

TEST(SourceText, FindsEveryKindOfCondition) {
    EXPECT_THAT(conditionsIn("#ifdef A\n#elif B\n#elifdef C\n#endif\n# ifndef D\n#else\n#endif\n"
                             "#define E\n// #if F\n"),
                SizeIs(4));
}

TEST(SourceText, ReadsBuildCommands) {
    const auto commands = buildCommandsIn(
        "# comment (with brackets)\n"
        "tallowcrest_layer(\n    core\n    SOURCES\n    a.cpp # why\n    \"b c.cpp\")\n"
        "if(APPLE)\nadd_subdirectory(macos)\nendif()\n");
    ASSERT_THAT(commands, SizeIs(4));
    EXPECT_EQ(commands[0].name, "tallowcrest_layer");
    EXPECT_EQ(commands[0].line, 2U);
    EXPECT_THAT(commands[0].arguments, ElementsAre("core", "SOURCES", "a.cpp", "b", "c.cpp"));
    EXPECT_EQ(commands[1].name, "if");
    EXPECT_EQ(commands[2].name, "add_subdirectory");
    EXPECT_THAT(commands[2].arguments, ElementsAre("macos"));
    EXPECT_THAT(commands[3].arguments, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest::architecture
