// Stands for a tool of macOS: under the tool's name, it prints what was recorded of it. The folder
// "recordings" beside it has the file "INDEX.NAME" for each call of a tool, from 0. Where there is
// none, it prints nothing. Beside that, "INDEX.NAME.slow" keeps the second half back for a while,
// "INDEX.NAME.hangs" lets the call wait for its end, and "INDEX.NAME.killed" ends it by a signal.
// The name and the arguments are added to the file "calls", the variable LC_NUMERIC to "numbers".

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

/// How many calls of the tool there were before this one, which is added.
int addCall(const fs::path& calls, const std::string& name, char** arguments) {
    const int lock = ::open(calls.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (lock < 0 || ::flock(lock, LOCK_EX) != 0) {
        std::exit(EXIT_FAILURE);
    }
    int before = 0;
    std::ifstream earlier(calls);
    for (std::string line; std::getline(earlier, line);) {
        before += line.starts_with(name + '\t') ? 1 : 0;
    }
    std::string line = name + '\t';
    for (; *arguments != nullptr; ++arguments) {
        line += '[' + std::string(*arguments) + ']';
    }
    line += '\n';
    if (::write(lock, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        std::exit(EXIT_FAILURE);
    }
    const char* numbers = std::getenv("LC_NUMERIC");
    std::ofstream(calls.parent_path() / "numbers", std::ios::app)
        << (numbers == nullptr ? "" : numbers) << '\n';
    ::close(lock);
    return before;
}

}  // namespace

int main(int, char** argv) {
    const fs::path tool = argv[0];
    const fs::path recordings = tool.parent_path() / "recordings";
    const int index = addCall(recordings / "calls", tool.filename(), argv + 1);
    const std::string recorded =
        recordings / (std::to_string(index) + '.' + tool.filename().string());
    std::ostringstream read;
    read << std::ifstream(recorded, std::ios::binary).rdbuf();
    const std::string output = read.str();
    const std::size_t half = fs::exists(recorded + ".slow") ? output.size() / 2 : 0;
    if (half > 0) {
        std::cout << output.substr(0, half) << std::flush;
        constexpr useconds_t pause = 200'000;
        ::usleep(pause);
    }
    std::cout << output.substr(half) << std::flush;
    if (fs::exists(recorded + ".hangs")) {
        ::pause();
    }
    if (fs::exists(recorded + ".killed")) {
        ::raise(SIGKILL);
    }
    return EXIT_SUCCESS;
}
