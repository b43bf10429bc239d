#include "platform/base/standard_streams.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

/// Runs `check` in a child process, whose descriptors may be closed at will; the status it
/// returned.
template <class Check>
int inChild(Check check) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(check());
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status);
}

TEST(StandardStreams, ClosedOnesAreTakenByWhatFailsEveryAccess) {
    EXPECT_EQ(inChild([] {
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

TEST(StandardStreams, OpenOnesStayAsTheyAre) {
    EXPECT_EQ(inChild([] {
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
