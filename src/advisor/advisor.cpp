#include "advisor/advisor.h"

#include "actions/actions.h"

namespace tallowcrest {

Advisor::Advisor(const Dependencies& dependencies)
    : key(dependencies.services, dependencies.ports),
      trust(dependencies.services),
      drafts(dependencies.services, dependencies.sample, dependencies.scan),
      suggestions({dependencies.services, dependencies.sample, dependencies.actions.review,
                   dependencies.actions.local, dependencies.scan, dependencies.reports, trust}),
      provider({dependencies.services, dependencies.sample, dependencies.reports,
                dependencies.actions.pasteboard, suggestions, drafts, key}),
      chat(dependencies.services, dependencies.sample, dependencies.actions.review,
           dependencies.reports, key) {}

}  // namespace tallowcrest
