#include "platform/posix/child_environment.h"

#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/spawn_support.h"

namespace tallowcrest {
namespace {

bool isForThisProcessAlone(std::string_view variable) {
    return variable.starts_with("XDG_ACTIVATION_TOKEN=") ||
           variable.starts_with("DESKTOP_STARTUP_ID=");
}

struct Environment {
    Environment() {
        for (char** variable = spawn_support::environment();
             variable != nullptr && *variable != nullptr; ++variable) {
            if (!isForThisProcessAlone(*variable)) {
                texts.emplace_back(*variable);
            }
        }
        pointers.reserve(texts.size() + 1);
        for (std::string& text : texts) {
            pointers.push_back(text.data());
        }
        pointers.push_back(nullptr);
    }

    std::vector<std::string> texts;
    std::vector<char*> pointers;
};

}  // namespace

char* const* childEnvironment() {
    static const Environment environment;
    return environment.pointers.data();
}

}  // namespace tallowcrest
