#pragma once

#include <cstdlib>

/// A program that includes this finds the locales that the build has compiled (CMakeLists.txt, with
/// the target tallowcrest_test_locales), and so do the programs that it starts.
namespace tallowcrest {

inline const int testLocalesAreFound = ::setenv("LOCPATH", TALLOWCREST_TEST_LOCALES, 1);

}  // namespace tallowcrest
