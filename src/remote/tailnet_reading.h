#pragma once

#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "remote/tail_status.h"

namespace tallowcrest {

class Locale;
class ToolRunner;

/// Sends a request to the local socket of the tailnet's daemon and returns everything that it
/// answers before it closes the connection. Absent when nothing listens there, the exchange is not
/// over within two seconds, or the answer is too long. Blocks; any thread, several at once.
using TailscaleDaemon =
    std::function<std::optional<std::string>(std::string_view request, const std::stop_token&)>;

/// From where the state of the tailnet is read. The references must outlive every reading.
struct TailnetSources {
    ToolRunner& tools;
    const Locale& locale;
    TailscaleDaemon daemon;  ///< absent where it has no local socket
    std::string cli;         ///< the path of the command line tool; empty to read nothing
};

// Any thread but the main one: each of them blocks.

/// The state of the tailnet, from the daemon or else from the command line tool. What cannot be
/// read is empty. Takes up to seven seconds, and longer when the tool ignores the signal to end;
/// less when `stop` is requested.
TailnetState readTailnet(const TailnetSources& sources, const std::stop_token& stop);

/// The peers of which the command line tool knows, sorted. Absent on every failure.
std::optional<std::vector<TailDevice>> loadTailDevices(const TailnetSources& sources,
                                                       const std::stop_token& stop);

/// The issues that the command line tool reports; one fixed line when there is no such tool, and
/// empty on every other failure.
std::vector<std::string> loadTailscaleHealthIssues(const TailnetSources& sources,
                                                   const std::stop_token& stop);

}  // namespace tallowcrest
