#include "presentation/words/local_public_key_status.h"

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(LocalPublicKeyStatus, SaysWhetherThereIsAKey) {
    EXPECT_EQ(localPublicKeyStatus(true), "Local SSH public key found.");
    EXPECT_EQ(localPublicKeyStatus(false),
              "No local SSH public key found. Generate one with ssh-keygen.");
}

}  // namespace
}  // namespace tallowcrest
