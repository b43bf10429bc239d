#pragma once

class QString;

namespace tallowcrest {

class Provider;
struct HeaderAction;

/// The button of a page header that requests an analysis. Its title follows the stored key and the
/// analysis under way; the page shows the provider's observable. `provider` must outlive it. Main
/// thread.
HeaderAction analysisAction(Provider& provider, const QString& identifier);

}  // namespace tallowcrest
