#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/remote_records.h"

namespace tallowcrest {

class JsonReader;
class Locale;

/// What the local client of the tailnet has told.
struct TailnetState {
    /// Online peers first, then by name. Empty when there are none or the last reading failed.
    std::vector<TailDevice> tailDevices;
    /// What is wrong with the client of this machine, one line each.
    std::vector<std::string> tailscaleHealthIssues;
    /// Whether the client told of its peers at all.
    bool isAnswered = false;

    bool operator==(const TailnetState&) const = default;
};

// Any thread.

/// The peer with the key `id`. `peer` has entered its object, which is then read to its end.
/// A member that is missing or of another type gives the field's default.
TailDevice parseTailDevice(std::string id, JsonReader& peer);

/// A status as the command line tool and the daemon print it. The peers are sorted, and none when
/// `Peer` is not an object of objects. The issues are the strings of `Health`. Absent when the text
/// is not a JSON object.
std::optional<TailnetState> parseTailStatus(std::string_view json, const Locale& locale);

/// The issues of a status in plain text, as the command line tool prints it.
std::vector<std::string> parseTailscaleHealthIssues(std::string_view status);

}  // namespace tallowcrest
