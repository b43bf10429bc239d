#include "actions/graceful_quit.h"

#include <algorithm>
#include <array>

namespace tallowcrest {

bool GracefulQuit::gracefulAppQuit(const std::string& name,
                                   const std::vector<ProcessSample>& members) {
    return !isSyntheticGroupName(name) && ask(name, members);
}

bool isSyntheticGroupName(std::string_view name) {
    constexpr std::array<std::string_view, 4> syntheticNames{"Developer Tools", "Electron Apps",
                                                             "Node.js", "Python"};
    return std::find(syntheticNames.begin(), syntheticNames.end(), name) != syntheticNames.end();
}

}  // namespace tallowcrest
