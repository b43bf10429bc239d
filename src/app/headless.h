#pragma once

#include <memory>

#include "app/options.h"

namespace tallowcrest {

class HttpExchange;

/// Samples without a window and prints to standard output. Returns the program's exit status: 0
/// after the requested number of samples, the report or the answer, 1 when standard output cannot
/// be written. `http`, which is never null, is how the advisor reaches a provider, if there is a key
/// in the environment.
int runHeadless(const Options& options, std::shared_ptr<HttpExchange> http);

}  // namespace tallowcrest
