#include "tests/platform/trash/trash_proof.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/trash/own_mounts.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

TEST(TrashProof, AHostileThreadMakesNoCleanUpLoseOrTouchAnything) {
    const TemporaryFolder folder;
    inOwnMounts([&] {
        mountMemory(folder.path());
        const ProofReport report = proveTrash(folder.path(), 3000);
        EXPECT_THAT(report.faults, ::testing::IsEmpty());
        EXPECT_GT(report.moved, 0);
        EXPECT_GT(report.left, 0);
        EXPECT_GT(report.putBack, 0);
        EXPECT_GT(report.descriptionsMoved, 0);
    });
}

}  // namespace
}  // namespace tallowcrest
