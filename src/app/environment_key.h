#pragma once

#include <memory>

namespace tallowcrest {

class SecretStore;

/// The variable with the key of a provider, for a program without a window. A key never is an
/// argument, which every process can read.
inline constexpr const char* keyVariable = "TALLOWCREST_AI_KEY";

/// Takes the key out of the environment, so that no started program gets it and its bytes do not
/// remain there. Null without a key. What it returns cannot be written. Main thread, before there
/// are others.
std::shared_ptr<SecretStore> takeEnvironmentKey();

}  // namespace tallowcrest
