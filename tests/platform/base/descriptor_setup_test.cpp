#include "platform/base/descriptor_setup.h"

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/platform/support/test_children.h"

namespace tallowcrest {
namespace {

TEST(OccupyStandardDescriptors, MakesEveryAccessToAClosedOneFail) {
    EXPECT_EQ(statusOfChild([] {
                  close(STDIN_FILENO);
                  close(STDOUT_FILENO);
                  close(STDERR_FILENO);
                  occupyStandardDescriptors();
                  char byte = 'x';
                  if (read(STDIN_FILENO, &byte, 1) != -1) {
                      return 1;
                  }
                  if (write(STDOUT_FILENO, &byte, 1) != -1) {
                      return 2;
                  }
                  if (write(STDERR_FILENO, &byte, 1) != -1) {
                      return 3;
                  }
                  return open("/dev/null", O_RDONLY) > STDERR_FILENO ? 0 : 4;
              }),
              0);
}

TEST(OccupyStandardDescriptors, LeavesOpenOnesUnchanged) {
    EXPECT_EQ(statusOfChild([] {
                  int ends[2];
                  if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) != STDOUT_FILENO) {
                      return 1;
                  }
                  close(STDERR_FILENO);
                  occupyStandardDescriptors();
                  const char sent = 'x';
                  char received = 0;
                  if (write(STDOUT_FILENO, &sent, 1) != 1 || read(ends[0], &received, 1) != 1) {
                      return 2;
                  }
                  return received == sent ? 0 : 3;
              }),
              0);
}

}  // namespace
}  // namespace tallowcrest
