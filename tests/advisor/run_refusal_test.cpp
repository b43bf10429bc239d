#include "advisor/run_refusal.h"

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

struct Row {
    const char* type;
    bool isApproved;
    double pressure;
    const char* message;  ///< empty when it may run
    bool isBlocked = false;
};

TEST(RunRefusal, SaysWhyASuggestionDoesNotRun) {
    const Row rows[] = {
        {"select_top", false, 95, "Approve 'Do it' before running it."},
        {"local_purge", false, 95, "Approve 'Do it' before running it."},
        {"rm_rf", false, 95, "Approve 'Do it' before running it."},
        {"select_top", true, 0, ""},
        {"scan_remote", true, 0, ""},
        {"copy_report", true, 0, ""},
        {"export_diagnostics", true, 0, ""},
        {"local_purge", true, 82.5, ""},
        {"local_purge", true, 82.4,
         "AI purge suggestion blocked because memory pressure is below 82%.", true},
        {"rm_rf", true, 95, "AI action 'rm_rf' is informational only.", true},
        {"LOCAL_PURGE", true, 95, "AI action 'LOCAL_PURGE' is informational only.", true},
        {"disk_cleanup", true, 95, "AI action 'disk_cleanup' is informational only.", true},
        {"", true, 95, "AI action '' is informational only.", true},
    };
    for (const Row& row : rows) {
        const auto refusal = runRefusal({UUID::random(), row.type, "Do it", "why", "low"},
                                        row.isApproved, row.pressure, 82.5);
        SCOPED_TRACE(row.type);
        EXPECT_EQ(refusal ? refusal->message : "", row.message);
        EXPECT_EQ(refusal && refusal->isBlocked, row.isBlocked);
    }
}

}  // namespace
}  // namespace tallowcrest
