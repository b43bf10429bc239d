#pragma once

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/procfs_process_table.h"
#include "tests/platform/linux/fake_proc_tree.h"

namespace tallowcrest {

/// A process table over a tree that each test fills.
class ProcfsProcessTableTest : public testing::Test {
protected:
    /// The one row that there is.
    ProcessSample onlyRow() {
        const auto rows = table.readProcesses();
        EXPECT_EQ(rows.size(), 1U);
        return rows.empty() ? ProcessSample{} : rows.front();
    }

    std::vector<std::int64_t> pids() {
        std::vector<std::int64_t> result;
        for (const ProcessSample& row : table.readProcesses()) {
            result.push_back(row.pid);
        }
        return result;
    }

    FakeProcTree tree;
    ProcfsProcessTable table{tree.machine(), tree.clocks()};
};

}  // namespace tallowcrest
