#include "core/remote_records.h"

namespace tallowcrest {

std::string_view title(RemoteHealth::Status status) {
    switch (status) {
        case RemoteHealth::Status::reachable:
            return "Reachable";
        case RemoteHealth::Status::noTailnetPath:
            return "No Tailnet Path";
        case RemoteHealth::Status::noAddress:
            return "No Address";
        case RemoteHealth::Status::connectionBlocked:
            return "Connection Blocked";
        case RemoteHealth::Status::hostKeyIssue:
            return "Host Key Issue";
        case RemoteHealth::Status::authNeeded:
            return "Auth Needed";
        case RemoteHealth::Status::unknown:
            return "Needs Setup";
    }
    return {};
}

}  // namespace tallowcrest
