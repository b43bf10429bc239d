#pragma once

#include <string>

namespace tallowcrest {

/// The account that this process runs under. Fields that the system does not know are empty.
struct UserAccount {
    std::string name;
    std::string homeDirectory;  ///< absolute path
};

/// Any thread.
UserAccount userAccount();

}  // namespace tallowcrest
