#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/linux/fake_proc_tree.h"
#include "tests/platform/support/test_children.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;

/// Lowers the limit of open files during its lifetime.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t limit) {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit lowered{limit, before_.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &lowered);
    }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &before_); }

private:
    rlimit before_{};
};

class ProcfsDescriptorTest : public ProcfsProcessTableTest {
protected:
    void putProcesses(std::int64_t count) {
        for (std::int64_t pid = 1; pid <= count; ++pid) {
            tree.put(pid, {.userTicks = 0});
            tree.putExecutable(pid, "/usr/bin/worker");
        }
    }

    /// Expects each process to have a row with the load of half a core over the next 4 seconds.
    void expectHalfACoreEach(std::int64_t count) {
        tree.advance(4s);
        for (std::int64_t pid = 1; pid <= count; ++pid) {
            tree.put(pid, {.userTicks = 200});
        }
        const auto rows = table.readProcesses();
        ASSERT_EQ(rows.size(), static_cast<std::size_t>(count));
        for (const auto& row : rows) {
            EXPECT_DOUBLE_EQ(row.cpu, 50.0);
            EXPECT_EQ(row.command, "/usr/bin/worker");
        }
    }
};

TEST_F(ProcfsDescriptorTest, OneDescriptorPerProcessStaysOpen) {
    const DescriptorLimit limit(1024);
    putProcesses(50);
    const int before = openDescriptorCount();
    EXPECT_EQ(table.readProcesses().size(), 50U);
    EXPECT_EQ(openDescriptorCount(), before + 51) << "the directory, and one for each process";

    for (std::int64_t pid = 1; pid <= 20; ++pid) {
        tree.remove(pid);
    }
    EXPECT_EQ(table.readProcesses().size(), 30U);
    EXPECT_EQ(openDescriptorCount(), before + 31);
}

TEST_F(ProcfsDescriptorTest, LeavesAReserveToTheRestOfTheProgram) {
    putProcesses(200);
    const int before = openDescriptorCount();
    const DescriptorLimit limit(128);

    EXPECT_EQ(table.readProcesses().size(), 200U);

    EXPECT_EQ(openDescriptorCount(), before + 1 + 64);
    expectHalfACoreEach(200);
    EXPECT_EQ(openDescriptorCount(), before + 1 + 64);
}

TEST_F(ProcfsDescriptorTest, KeepsNothingOpenUnderATinyLimit) {
    putProcesses(20);
    const int before = openDescriptorCount();
    const DescriptorLimit limit(40);

    EXPECT_EQ(table.readProcesses().size(), 20U);
    EXPECT_EQ(openDescriptorCount(), before + 1);
    expectHalfACoreEach(20);
}

/// Opens descriptors until the limit is reached.
std::vector<UniqueFD> takeAllDescriptors() {
    std::vector<UniqueFD> taken;
    for (;;) {
        UniqueFD descriptor(::dup(0));
        if (!descriptor.valid()) {
            return taken;
        }
        taken.push_back(std::move(descriptor));
    }
}

TEST_F(ProcfsDescriptorTest, ClosesDescriptorsWhenNoneAreLeft) {
    putProcesses(100);
    const DescriptorLimit limit(256);
    EXPECT_EQ(table.readProcesses().size(), 100U);

    tree.put(101, {.userTicks = 0});
    tree.putExecutable(101, "/usr/bin/worker");
    const std::vector<UniqueFD> taken = takeAllDescriptors();
    EXPECT_EQ(table.readProcesses().size(), 101U) << "the new process has been read too";
    expectHalfACoreEach(101);

    const UniqueFD another(::dup(0));
    EXPECT_TRUE(another.valid()) << "the rest of the program can open files again";
}

TEST_F(ProcfsDescriptorTest, LeavesRowsOutWhenThereIsNoDescriptorAtAll) {
    const DescriptorLimit limit(64);
    tree.put(1, {});
    EXPECT_EQ(table.readProcesses().size(), 1U);

    std::vector<ProcessSample> rows;
    std::vector<ProcessSample> unopenedRows;
    {
        // Compared afterwards, because a sanitizer needs a descriptor for its checks.
        const std::vector<UniqueFD> taken = takeAllDescriptors();
        rows = table.readProcesses();
        ProcfsProcessTable unopened(tree.machine(), tree.clocks());
        unopenedRows = unopened.readProcesses();
    }
    EXPECT_THAT(rows, IsEmpty());
    EXPECT_THAT(unopenedRows, IsEmpty());
    EXPECT_EQ(table.readProcesses().size(), 1U);
}

TEST_F(ProcfsDescriptorTest, ACommandThatCouldNotBeReadIsReadLater) {
    // With a single descriptor left, the `stat` file is kept open, and none remains for reading the
    // arguments.
    const DescriptorLimit limit(256);
    tree.put(1, {});
    tree.putCommandLine(1, "/usr/sbin/daemon");
    EXPECT_EQ(table.readProcesses().size(), 1U);
    tree.put(2, {});
    tree.putCommandLine(2, "/usr/sbin/other");
    {
        std::vector<UniqueFD> taken = takeAllDescriptors();
        taken.pop_back();
        const auto rows = table.readProcesses();
        ASSERT_EQ(rows.size(), 2U);
        EXPECT_EQ(rows[1].command, "worker");
    }
    const auto rows = table.readProcesses();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1].command, "/usr/sbin/other");
}

}  // namespace
}  // namespace tallowcrest
