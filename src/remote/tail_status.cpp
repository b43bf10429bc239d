#include "remote/tail_status.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

#include "core/json_reader.h"
#include "core/locale.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

void trimDots(std::string& text) {
    text.erase(text.find_last_not_of('.') + 1);
    text.erase(0, text.find_first_not_of('.'));
}

/// A member of a peer that is read.
enum class Member : std::uint8_t {
    dnsName,
    hostName,
    online,
    tailscaleIPs,
    os,
    active,
    inMagicSock,
    curAddr,
    relay,
    peerRelay,
    other,
};

Member memberNamed(std::string_view key) {
    // In the order of `Member`.
    constexpr std::array<std::string_view, 10> names{
        "DNSName", "HostName",    "Online",  "TailscaleIPs", "OS",
        "Active",  "InMagicSock", "CurAddr", "Relay",        "PeerRelay"};
    const auto isNamed = [key](std::string_view name) {
        return name.size() == key.size() && name.front() == key.front() && name == key;
    };
    return static_cast<Member>(std::ranges::find_if(names, isNamed) - names.begin());
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

/// The value of a member of `Peer`.
struct Peer {
    TailDevice device;
    bool isObject = false;  ///< otherwise only the identifier is set
};

/// Reads the next value. Empty unless it is an object.
std::vector<Peer> readPeers(JsonReader& reader) {
    std::vector<Peer> peers;
    if (!reader.enterObject()) {
        reader.skip();
        return peers;
    }
    while (const auto key = reader.nextMember()) {
        std::string id(*key);
        if (reader.enterObject()) {
            peers.push_back({parseTailDevice(std::move(id), reader), true});
        } else {
            reader.skip();
            peers.push_back({{.id = std::move(id)}, false});
        }
    }
    return peers;
}

/// Puts the peers into the order of their keys. Of several with one key, the last one counts.
void sortByKey(std::vector<Peer>& peers) {
    const auto key = [](const Peer& each) -> const std::string& { return each.device.id; };
    // As the daemon and the tool print them.
    if (std::ranges::adjacent_find(peers, std::ranges::greater_equal(), key) == peers.end()) {
        return;
    }
    std::ranges::stable_sort(peers, std::ranges::less(), key);
    const auto kept =
        std::unique(peers.rbegin(), peers.rend(),
                    [&key](const Peer& a, const Peer& b) { return key(a) == key(b); });
    peers.erase(peers.begin(), kept.base());
}

/// Empty unless all of them are objects. Equal names stay in the order of their keys, so that rows
/// do not change places.
std::vector<TailDevice> sortedDevices(std::vector<Peer> peers, const Locale& locale) {
    sortByKey(peers);
    if (!std::ranges::all_of(peers, &Peer::isObject)) {
        return {};
    }
    std::vector<TailDevice*> order;
    order.reserve(peers.size());
    for (Peer& each : peers) {
        order.push_back(&each.device);
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
        switch (memberNamed(*key)) {
            case Member::dnsName:
                dnsName = peer.text();
                break;
            case Member::hostName:
                hostName = peer.text();
                break;
            case Member::online:
                device.online = peer.boolean().value_or(false);
                break;
            case Member::tailscaleIPs:
                device.addresses = readTexts(peer);
                break;
            case Member::os:
                device.os = peer.text().value_or("unknown");
                break;
            case Member::active:
                device.active = peer.boolean().value_or(false);
                break;
            case Member::inMagicSock:
                device.inMagicSock = peer.boolean().value_or(false);
                break;
            case Member::curAddr:
                device.currentAddress = peer.text().value_or("");
                break;
            case Member::relay:
                relay = peer.text();
                break;
            case Member::peerRelay:
                peerRelay = peer.text();
                break;
            case Member::other:
                peer.skip();
                break;
        }
    }
    device.hostName = hostName ? std::move(*hostName) : dnsName.value_or("");
    device.name = std::move(dnsName).value_or("");
    trimDots(device.name);
    if (device.name.empty()) {
        device.name = device.hostName;
    }
    device.relay = relay ? std::move(*relay) : std::move(peerRelay).value_or("");
    return device;
}

std::optional<TailnetState> parseTailStatus(std::string_view json, const Locale& locale) {
    JsonReader reader(json);
    if (!reader.enterObject()) {
        return std::nullopt;
    }
    TailnetState state;
    state.isAnswered = true;
    std::vector<Peer> peers;
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
