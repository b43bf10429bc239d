#include "disk/disk.h"

#include "actions/actions.h"
#include "advisor/advisor.h"

namespace tallowcrest {

Disk::Disk(const Dependencies& dependencies)
    : autopilot({dependencies.services, dependencies.actions.automation, dependencies.advisor.trust,
                 dependencies.refresh, dependencies.ports}),
      storage({dependencies.services, dependencies.sample, dependencies.actions.automation,
               dependencies.tools, dependencies.ports}),
      files({dependencies.services, dependencies.advisor.provider, dependencies.refresh,
             dependencies.ports}) {}

}  // namespace tallowcrest
