#pragma once

#include <memory>

namespace tallowcrest {

class SecretStore;

/// The variable with the key of a provider, for a program without a window. A key never is an
/// argument, which every process can read.
inline constexpr const char* keyVariable = "TALLOWCREST_AI_KEY";

struct EnvironmentKey {
    /// Has the key, and cannot be written. Null without a key.
    std::shared_ptr<SecretStore> store = {};
    /// Whether what is there in place of a key cannot stand in a header.
    bool isBad = false;
};

/// Takes the key out of the environment, so that no started program gets it and its bytes do not
/// remain there, and trims it. White space alone counts as no key. If the variable is there several
/// times, all are taken out and the first key counts. Main thread, before there are others.
EnvironmentKey takeEnvironmentKey();

}  // namespace tallowcrest
