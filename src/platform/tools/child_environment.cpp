#include "platform/tools/child_environment.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/base/environment.h"
#include "platform/tools/spawn_support.h"

namespace tallowcrest {
namespace {

bool isActivationVariable(std::string_view variable) {
    const std::size_t end = variable.find('=');
    const std::string_view name = variable.substr(0, end);
    return end != std::string_view::npos &&
           std::find(activationVariables.begin(), activationVariables.end(), name) !=
               activationVariables.end();
}

}  // namespace

ChildEnvironment::ChildEnvironment(const char* const* source) {
    for (const char* const* variable = source; variable != nullptr && *variable != nullptr;
         ++variable) {
        if (!isActivationVariable(*variable)) {
            texts_.emplace_back(*variable);
        }
    }
    pointers_.reserve(texts_.size() + 1);
    for (std::string& text : texts_) {
        pointers_.push_back(text.data());
    }
    pointers_.push_back(nullptr);
}

char* const* childEnvironment() {
    static const ChildEnvironment environment(spawn_support::environment());
    return environment.variables();
}

}  // namespace tallowcrest
