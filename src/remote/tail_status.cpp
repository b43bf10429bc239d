#include "remote/tail_status.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "core/json_reader.h"
#include "core/locale.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

std::string_view trimmingDots(std::string_view text) {
    const std::size_t first = text.find_first_not_of('.');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of('.') - first + 1);
}

/// Reads the next value. Empty unless it is an array of strings.
std::vector<std::string> readTexts(JsonReader& reader) {
    if (!reader.enterArray()) {
        reader.skip();
        return {};
    }
    std::vector<std::string> texts;
    bool areTexts = true;
    while (reader.nextElement()) {
        std::optional<std::string> text = reader.text();
        areTexts = areTexts && text;
        if (areTexts) {
            texts.push_back(std::move(*text));
        }
    }
    return areTexts ? texts : std::vector<std::string>();
}

/// Of several members with one key, the last one counts. Absent for a value that is no object.
using Peers = std::map<std::string, std::optional<TailDevice>>;

/// Reads the next value. Empty unless it is an object.
Peers readPeers(JsonReader& reader) {
    if (!reader.enterObject()) {
        reader.skip();
        return {};
    }
    Peers peers;
    while (const auto key = reader.nextMember()) {
        std::string id(*key);
        std::optional<TailDevice> device;
        if (reader.enterObject()) {
            device = parseTailDevice(id, reader);
        } else {
            reader.skip();
        }
        peers.insert_or_assign(peers.end(), std::move(id), std::move(device));
    }
    return peers;
}

/// Empty unless all of them are objects. Equal names stay in the order of their keys, so that rows
/// do not change places.
std::vector<TailDevice> sortedDevices(Peers peers, const Locale& locale) {
    std::vector<TailDevice*> order;
    order.reserve(peers.size());
    for (auto& [id, device] : peers) {
        if (!device) {
            return {};
        }
        order.push_back(&*device);
    }
    std::ranges::stable_sort(order, [&locale](const TailDevice* a, const TailDevice* b) {
        return a->online != b->online ? a->online
                                      : locale.compareIgnoringCase(a->name, b->name) < 0;
    });
    std::vector<TailDevice> devices;
    devices.reserve(order.size());
    for (TailDevice* device : order) {
        devices.push_back(std::move(*device));
    }
    return devices;
}

std::string withoutBullets(std::string_view line) {
    constexpr std::string_view bullet = "#     - ";
    std::string text;
    for (std::size_t at = 0; (at = line.find(bullet)) != std::string_view::npos;) {
        text.append(line.substr(0, at));
        line.remove_prefix(at + bullet.size());
    }
    return text.append(line);
}

/// Each line trimmed, without those that are then empty.
std::vector<std::string> cleanIssues(const std::vector<std::string>& lines) {
    std::vector<std::string> issues;
    for (const std::string& line : lines) {
        if (const std::string_view issue = trimmingWhiteSpace(line); !issue.empty()) {
            issues.emplace_back(issue);
        }
    }
    return issues;
}

}  // namespace

TailDevice parseTailDevice(std::string id, JsonReader& peer) {
    TailDevice device{.id = std::move(id), .os = "unknown"};
    std::optional<std::string> dnsName;
    std::optional<std::string> hostName;
    std::optional<std::string> relay;
    std::optional<std::string> peerRelay;
    while (const auto key = peer.nextMember()) {
        if (key == "DNSName") {
            dnsName = peer.text();
        } else if (key == "HostName") {
            hostName = peer.text();
        } else if (key == "Online") {
            device.online = peer.boolean().value_or(false);
        } else if (key == "TailscaleIPs") {
            device.addresses = readTexts(peer);
        } else if (key == "OS") {
            device.os = peer.text().value_or("unknown");
        } else if (key == "Active") {
            device.active = peer.boolean().value_or(false);
        } else if (key == "InMagicSock") {
            device.inMagicSock = peer.boolean().value_or(false);
        } else if (key == "CurAddr") {
            device.currentAddress = peer.text().value_or("");
        } else if (key == "Relay") {
            relay = peer.text();
        } else if (key == "PeerRelay") {
            peerRelay = peer.text();
        } else {
            peer.skip();
        }
    }
    device.hostName = hostName ? std::move(*hostName) : dnsName.value_or("");
    const std::string_view name = trimmingDots(dnsName ? std::string_view(*dnsName) : "");
    device.name = name.empty() ? device.hostName : name;
    device.relay = relay ? std::move(*relay) : std::move(peerRelay).value_or("");
    return device;
}

std::optional<TailnetState> parseTailStatus(std::string_view json, const Locale& locale) {
    JsonReader reader(json);
    if (!reader.enterObject()) {
        return std::nullopt;
    }
    TailnetState state;
    Peers peers;
    while (const auto key = reader.nextMember()) {
        if (key == "Peer") {
            peers = readPeers(reader);
        } else if (key == "Health") {
            state.tailscaleHealthIssues = cleanIssues(readTexts(reader));
        } else {
            reader.skip();
        }
    }
    if (!reader.isComplete()) {
        return std::nullopt;
    }
    state.tailDevices = sortedDevices(std::move(peers), locale);
    return state;
}

std::vector<std::string> parseTailscaleHealthIssues(std::string_view status) {
    constexpr std::string_view marker = "# Health check:";
    const std::size_t start = status.find(marker);
    if (start == std::string_view::npos) {
        return {};
    }
    status.remove_prefix(start + marker.size());
    std::vector<std::string> lines;
    while (const auto line = takeLine(status)) {
        lines.push_back(withoutBullets(*line));
    }
    return cleanIssues(lines);
}

}  // namespace tallowcrest
