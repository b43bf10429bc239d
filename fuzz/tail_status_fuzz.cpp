#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "core/locale.h"
#include "core/text.h"
#include "remote/local_api.h"
#include "remote/tail_status.h"

#include "fuzz/require.h"

namespace tallowcrest {
namespace {

using nlohmann::json;

/// Whether the library reads this text as everybody does. It ignores a mark at the beginning and
/// what follows a NUL, and refuses numbers beyond the range of `double`.
bool isComparable(const std::string& text) {
    if (text.starts_with("\xEF\xBB\xBF") || text.find('\0') != std::string::npos) {
        return false;
    }
    try {
        static_cast<void>(json::parse(text));
    } catch (const json::out_of_range&) {
        return false;
    } catch (const json::exception&) {
        return true;
    }
    return true;
}

std::string textOf(const json& object, const char* key, const std::string& fallback) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : fallback;
}

bool flagOf(const json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_boolean() && found->get<bool>();
}

/// Compares one peer with what a document of the library says.
void checkDevice(const TailDevice& device, const json& peer) {
    require(device.hostName == textOf(peer, "HostName", textOf(peer, "DNSName", "")));
    require(device.os == textOf(peer, "OS", "unknown"));
    require(device.currentAddress == textOf(peer, "CurAddr", ""));
    require(device.relay == textOf(peer, "Relay", textOf(peer, "PeerRelay", "")));
    require(device.online == flagOf(peer, "Online"));
    require(device.active == flagOf(peer, "Active"));
    require(device.inMagicSock == flagOf(peer, "InMagicSock"));
    const std::string dnsName = textOf(peer, "DNSName", "");
    require(device.name == device.hostName || dnsName.find(device.name) != std::string::npos);
    require(device.name.empty() || device.name == device.hostName ||
            (device.name.front() != '.' && device.name.back() != '.'));
    for (const std::string& address : device.addresses) {
        require(isValidUTF8(address));
    }
}

void checkStatus(const std::string& text) {
    const std::optional<TailnetState> state = parseTailStatus(text, PlainLocale());
    if (!isComparable(text)) {
        return;
    }
    const json document = json::parse(text, nullptr, false);
    require(state.has_value() == document.is_object());
    if (!state) {
        return;
    }
    const json peers = document.value("Peer", json());
    bool areObjects = peers.is_object();
    for (const json& peer : peers) {
        areObjects = areObjects && peer.is_object();
    }
    require(state->tailDevices.size() == (areObjects ? peers.size() : 0));
    bool wasOffline = false;
    for (const TailDevice& device : state->tailDevices) {
        require(peers.contains(device.id));
        checkDevice(device, peers[device.id]);
        require(!(wasOffline && device.online));
        wasOffline = !device.online;
    }
    require(document.contains("Health") || state->tailscaleHealthIssues.empty());
}

}  // namespace
}  // namespace tallowcrest

/// The input is a status, an answer of the daemon with one, or the plain text of the tool.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string input(data, data + size);
    const std::optional<std::string_view> body = local_api::bodyOf(input);
    require(!body || input.ends_with(*body));
    checkStatus(body ? std::string(*body) : input);
    for (const std::string& issue : parseTailscaleHealthIssues(input)) {
        require(!issue.empty() && trimmingWhiteSpace(issue) == issue);
        require(issue.find('\n') == std::string::npos);
    }
    return 0;
}
