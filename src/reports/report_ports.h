#pragma once

#include <memory>

#include "actions/report_folder.h"
#include "core/date.h"

namespace tallowcrest {

/// The ports of `Reports`. The folder is shared, because background work may outlive the component.
struct ReportPorts {
    std::shared_ptr<ReportFolder> folder;  ///< never null
    UTCOffset utcOffset;                   ///< never absent
};

}  // namespace tallowcrest
