#pragma once

#include <string>

namespace tallowcrest {

/// The account that this process runs under. A field that the system does not know is empty.
struct UserAccount {
    std::string name;
    std::string homeDirectory;  ///< absolute path
};

/// Any thread.
UserAccount userAccount();

}  // namespace tallowcrest
