#include "platform/linux/process_identity.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "platform/linux/procfs_process_table.h"
#include "tests/platform/linux/fake_proc_tree.h"
#include "tests/platform/support/test_children.h"
#include "tests/support/eventually.h"

namespace tallowcrest {
namespace {

ProcessSample sampleOf(std::int64_t pid, std::uint64_t startTime) {
    ProcessSample sample;
    sample.pid = pid;
    sample.startTime = startTime;
    return sample;
}

class ProcessIdentity : public testing::Test {
protected:
    /// Writes process 4242, which started at tick 777.
    void put(const std::string& name, char state) {
        FakeProcess process;
        process.name = name;
        process.state = state;
        process.startTicks = 777;
        tree.put(4242, process);
    }
    bool isSame(std::int64_t pid, std::uint64_t startTime) const {
        return isSameProcess(sampleOf(pid, startTime), tree.root().string());
    }

    FakeProcTree tree;
};

TEST_F(ProcessIdentity, IsPIDAndStartTime) {
    put("editor", 'S');
    EXPECT_TRUE(isSame(4242, 777));
    EXPECT_FALSE(isSame(4242, 776));
    EXPECT_FALSE(isSame(4242, 778));
    EXPECT_FALSE(isSame(4243, 777));
}

TEST_F(ProcessIdentity, AnUnknownStartTimeMatchesAnyProcessWithThePID) {
    EXPECT_FALSE(isSame(4242, 0));
    put("editor", 'R');
    EXPECT_TRUE(isSame(4242, 0));
}

TEST_F(ProcessIdentity, DoesNotMatchAZombie) {
    put("editor", 'Z');
    EXPECT_FALSE(isSame(4242, 777));
    EXPECT_FALSE(isSame(4242, 0));
}

TEST_F(ProcessIdentity, ANameMayLookLikeTheRestOfTheLine) {
    put("a) Z 1 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 555 (b", 'S');
    EXPECT_TRUE(isSame(4242, 777));
    EXPECT_FALSE(isSame(4242, 555));
}

TEST_F(ProcessIdentity, InvalidPIDsMatchNothing) {
    put("editor", 'S');
    for (const std::int64_t pid :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-4242}, std::int64_t{2147483648},
          std::int64_t{4242} + (std::int64_t{1} << 32U), std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_FALSE(isSame(pid, 777)) << pid;
        EXPECT_FALSE(isSame(pid, 0)) << pid;
    }
}

TEST_F(ProcessIdentity, AnUnreadableFileMatchesNothing) {
    EXPECT_FALSE(isSame(4242, 777));
    tree.putStatText(4242, "4242 (editor) S 1 4242");
    EXPECT_FALSE(isSame(4242, 777));
    EXPECT_FALSE(isSame(4242, 0));
}

// Samples come from the process table.
TEST(IdentityOfARealProcess, MatchesItsSample) {
    TestChild child([] { waitForever(); });
    ProcfsProcessTable table(ProcfsMachine::current());
    std::optional<ProcessSample> row;
    ASSERT_TRUE(eventually([&] {
        row = rowOf(table.readProcesses(), child.pid());
        return row.has_value();
    }));
    ASSERT_NE(row->startTime, 0U);
    EXPECT_TRUE(isSameProcess(*row));
    row->startTime += 1;
    EXPECT_FALSE(isSameProcess(*row));
    row->startTime -= 1;
    child.becomeZombie();
    EXPECT_FALSE(isSameProcess(*row));
    child.end();
    EXPECT_FALSE(isSameProcess(*row));
}

}  // namespace
}  // namespace tallowcrest
