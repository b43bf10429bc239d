#pragma once

#include <functional>

class QString;

namespace tallowcrest {

class Provider;
struct HeaderAction;

/// The button of a page header that requests an analysis by `run`, as the page's other buttons do.
/// Its title follows the stored key and the analysis under way; the page shows the provider's
/// observable. `provider` must outlive it. Main thread.
HeaderAction analysisAction(const Provider& provider, const QString& identifier,
                            std::function<void()> run);

}  // namespace tallowcrest
