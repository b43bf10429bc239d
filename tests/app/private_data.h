#pragma once

#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// While this object exists, this process and its children keep the owner's data in a private
/// folder, so that a test neither depends on the settings of the person who runs it nor changes
/// them.
class PrivateData {
public:
    const std::filesystem::path& folder() const { return folder_.path(); }

private:
    TemporaryFolder folder_;
    ScopedVariable variable_{"XDG_DATA_HOME", folder_.path().string()};
};

}  // namespace tallowcrest
