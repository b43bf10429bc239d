#pragma once

#include <filesystem>
#include <string>

namespace tallowcrest {

/// The places on disk that differ between the systems. Those that texts name stand in the form in
/// which the owner of this system knows them.
struct Places {
    std::string caches;                  ///< "~/.cache"
    std::filesystem::path reports = {};  ///< absolute; empty when there is none
};

}  // namespace tallowcrest
