#include "platform/tools/child_environment.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/base/environment.h"
#include "platform/tools/spawn_support.h"

namespace tallowcrest {
namespace {

using namespace std::string_view_literals;

std::string_view nameOf(std::string_view variable) {
    return variable.substr(0, variable.find('='));
}

bool isActivationVariable(std::string_view variable) {
    return variable.find('=') != std::string_view::npos &&
           std::ranges::find(activationVariables, nameOf(variable)) != activationVariables.end();
}

/// Leaves all as it is but the form of numbers.
void usePlainNumbers(std::vector<std::string>& variables) {
    const auto isCategory = [](std::string_view name) { return name.starts_with("LC_"); };
    constexpr std::string_view all = "LC_ALL=";
    const auto forAll = std::ranges::find_if(variables, [&](const std::string& variable) {
        return variable.starts_with(all) && variable.size() > all.size();
    });
    if (forAll != variables.end()) {
        // It would override the variable for numbers.
        const std::string language = "LANG=" + forAll->substr(all.size());
        std::erase_if(variables, [&](const std::string& variable) {
            return isCategory(nameOf(variable)) || nameOf(variable) == "LANG"sv;
        });
        variables.push_back(language);
    }
    std::erase_if(variables,
                  [](const std::string& variable) { return nameOf(variable) == "LC_NUMERIC"sv; });
    variables.emplace_back("LC_NUMERIC=C");
}

}  // namespace

ChildEnvironment::ChildEnvironment(const char* const* source) {
    for (const char* const* variable = source; variable != nullptr && *variable != nullptr;
         ++variable) {
        if (!isActivationVariable(*variable)) {
            texts_.emplace_back(*variable);
        }
    }
    usePlainNumbers(texts_);
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
