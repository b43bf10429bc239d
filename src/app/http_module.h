#pragma once

#include <memory>
#include <string>

#include "advisor/advisor_ports.h"

namespace tallowcrest {

struct LoadedExchange {
    std::shared_ptr<HttpExchange> http = {};  ///< null when it cannot be loaded
    std::string problem = {};                 ///< then the reason, in the system's words
};

/// The exchange of the module "tallowcrest-http.so" in the folder of the running program. It is
/// loaded for as long as the process lives. Without a call, neither the module nor a library for
/// HTTP is in memory. Any thread.
LoadedExchange loadHttpExchange();

}  // namespace tallowcrest
