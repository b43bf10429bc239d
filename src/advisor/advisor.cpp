#include "advisor/advisor.h"

#include "actions/actions.h"

namespace tallowcrest {

Advisor::Advisor(const Dependencies& given)
    : trust(given.services),
      drafts(given.services, given.sample, given.scan),
      suggestions({given.services, given.sample, given.actions.review, given.actions.local,
                   given.scan, given.reports, trust}),
      provider({given.services, given.sample, given.reports, given.actions.pasteboard, suggestions,
                drafts, given.ports}),
      chat({given.services, given.sample, given.actions.review, given.reports, given.ports}) {}

}  // namespace tallowcrest
