#include <string>

#include <gmock/gmock.h>

#include "tests/support/run_program.h"

namespace tallowcrest {
namespace {

using testing::HasSubstr;

/// What the loader maps for a program, also for its libraries.
std::string librariesOf(const std::string& name) {
    return runProgram({.path = TALLOWCREST_BINARY_DIR "/" + name,
                       .withVariables = {"LD_TRACE_LOADED_OBJECTS=1"}})
        .standardOutput;
}

TEST(LinkedLibraries, TheProgramWithoutAWindowLoadsNeitherItsNorTheAdvisors) {
    const std::string libraries = librariesOf("tallowcrest");
    EXPECT_THAT(libraries, HasSubstr("libsqlite3"));
    for (const char* library : {"libQt", "libcurl", "libsecret", "libssl", "libcrypto", "libgcrypt",
                                "libglib", "libgio", "libgobject", "libicu"}) {
        EXPECT_THAT(libraries, Not(HasSubstr(library)));
    }
}

TEST(LinkedLibraries, TheWindowsProgramLoadsThoseForHttpOnlyForAnExchange) {
    const std::string libraries = librariesOf("tallowcrest-desktop");
    for (const char* library : {"libQt6Widgets", "libsecret"}) {
        EXPECT_THAT(libraries, HasSubstr(library));
    }
    for (const char* library : {"libcurl", "libssl", "libldap"}) {
        EXPECT_THAT(libraries, Not(HasSubstr(library)));
    }
}

}  // namespace
}  // namespace tallowcrest
