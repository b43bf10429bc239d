#pragma once

#include <cstdlib>

#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// While this object exists, this process and its children keep the owner's data in a private
/// folder, so that a test neither depends on the settings of the person who runs it nor changes
/// them.
class PrivateData {
public:
    PrivateData() { ::setenv("XDG_DATA_HOME", folder_.path().c_str(), 1); }
    PrivateData(const PrivateData&) = delete;
    PrivateData& operator=(const PrivateData&) = delete;
    ~PrivateData() { ::unsetenv("XDG_DATA_HOME"); }

    const std::filesystem::path& folder() const { return folder_.path(); }

private:
    TemporaryFolder folder_;
};

}  // namespace tallowcrest
