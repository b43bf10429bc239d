#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tallowcrest {

/// The program of settings_writer.cpp, running beside the test and killed with this object.
class WriterProcess {
public:
    explicit WriterProcess(const std::vector<std::string>& arguments);
    WriterProcess(const WriterProcess&) = delete;
    WriterProcess& operator=(const WriterProcess&) = delete;
    ~WriterProcess();

    /// Waits for `count` bytes of standard output, or fewer when it ends before.
    std::string readOutput(std::size_t count);
    /// All that is still to come.
    std::string readToEnd();

    void kill();
    /// Waits for its end. The exit status; -1 when a signal ended it.
    int wait();

private:
    pid_t pid_ = -1;
    int output_ = -1;
};

/// Where the build puts that program.
extern const char* const settingsWriterPath;

}  // namespace tallowcrest
