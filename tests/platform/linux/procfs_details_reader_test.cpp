#include "platform/linux/procfs_details_reader.h"

#include <unistd.h>

#include <cerrno>
#include <string>

#include <gmock/gmock.h>

#include "tests/platform/linux/fake_proc_tree.h"

using namespace std::string_literals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ProcfsDetailsReaderTest : public testing::Test {
protected:
    ProcfsDetailsReaderTest() {
        FakeProcess process;
        process.name = "worker (1)";
        process.startTicks = 777;
        tree.put(4242, process);
        tree.putCommandLine(4242, "python3\000a b.py\000"s);
    }

    /// A reader that runs as `self` and finds the names of users in "accounts".
    ProcfsDetailsReader reader(uid_t self) const {
        return ProcfsDetailsReader(tree.root().string(), (tree.root() / "accounts").string(), self);
    }

    FakeProcTree tree;
};

TEST_F(ProcfsDetailsReaderTest, ReadsArgumentsAndName) {
    const auto facts = reader(::geteuid()).readFacts(4242, 777);
    ASSERT_TRUE(facts);
    EXPECT_THAT(facts->arguments, ElementsAre("python3", "a b.py"));
    EXPECT_EQ(facts->owner, "") << "the user of this program";
    EXPECT_EQ(facts->shortName, "worker (1)");
    EXPECT_TRUE(reader(::geteuid()).readFacts(4242, 0)) << "an unknown start time is any";
}

TEST_F(ProcfsDetailsReaderTest, AnotherUserHasANameOrANumber) {
    const std::string number = std::to_string(::geteuid());
    EXPECT_EQ(reader(::geteuid() + 1).readFacts(4242, 777)->owner, number)
        << "there is no file of accounts";
    tree.putFile("accounts",
                 "# comment\n\nbroken\nother:x:4000000001:1::/:/bin/sh\nlong:x:4000000002:1:" +
                     std::string(20'000, 'l') + ":/:/bin/sh\nmail:x:" + number +
                     ":8:mailman:/var/mail:/usr/sbin/nologin\n");
    EXPECT_EQ(reader(::geteuid() + 1).readFacts(4242, 777)->owner, "mail");
    tree.putFile("accounts", "other:x:4000000001:1::/:/bin/sh\n");
    EXPECT_EQ(reader(::geteuid() + 1).readFacts(4242, 777)->owner, number);
}

TEST_F(ProcfsDetailsReaderTest, IsAbsentForAnotherProcessAndOneThatCannotBeRead) {
    EXPECT_FALSE(reader(0).readFacts(4242, 776));
    EXPECT_FALSE(reader(0).readFacts(4243, 0));
    EXPECT_FALSE(reader(0).readFacts(-1, 0));
    tree.putStatText(4242, "4242 (worker");
    EXPECT_FALSE(reader(0).readFacts(4242, 0));
}

TEST_F(ProcfsDetailsReaderTest, ReadsTheStartOfAVeryLongCommandLine) {
    tree.putCommandLine(4242, "tool\000"s + std::string(1'000'000, 'x'));
    const auto facts = reader(::geteuid()).readFacts(4242, 777);
    ASSERT_TRUE(facts && facts->arguments.size() == 2);
    EXPECT_LT(facts->arguments[1].size(), 20'000U);
    EXPECT_TRUE(facts->arguments[1].ends_with("x…")) << "the cut is shown";
}

TEST_F(ProcfsDetailsReaderTest, ReadsALongCommandLineWhole) {
    tree.putCommandLine(4242, "tool\000"s + std::string(16'000, 'x') + "\000--last\000"s);
    const auto facts = reader(::geteuid()).readFacts(4242, 777);
    ASSERT_TRUE(facts && facts->arguments.size() == 3);
    EXPECT_EQ(facts->arguments[1].size(), 16'000U);
    EXPECT_EQ(facts->arguments[2], "--last");
}

TEST_F(ProcfsDetailsReaderTest, AKernelThreadHasNoArguments) {
    tree.put(2, {.name = "kthreadd"});
    const auto facts = reader(::geteuid()).readFacts(2, 1000);
    ASSERT_TRUE(facts);
    EXPECT_THAT(facts->arguments, IsEmpty());
    EXPECT_EQ(facts->shortName, "kthreadd");
}

TEST(ProcfsDetailsReaderOfThisMachine, ReadsThisProcess) {
    const auto facts = ProcfsDetailsReader().readFacts(::getpid(), 0);
    ASSERT_TRUE(facts);
    ASSERT_FALSE(facts->arguments.empty());
    EXPECT_NE(facts->arguments.front().find(program_invocation_short_name), std::string::npos);
    EXPECT_EQ(facts->owner, "");
    EXPECT_TRUE(ProcfsDetailsReader("/proc", "/etc/passwd", ::geteuid() + 1)
                    .readFacts(::getpid(), 0)
                    ->owner.size() > 0);
}

}  // namespace
}  // namespace tallowcrest
