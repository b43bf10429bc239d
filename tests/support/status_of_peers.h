#pragma once

#include <string>

#include <fmt/format.h>

namespace tallowcrest {

/// A status with `count` peers, as large as the daemon of a tailnet prints it: a kilobyte for each.
/// Every second peer is online, every fourth a Mac.
inline std::string statusOfPeers(int count) {
    std::string text =
        "{\n\t\"Version\": \"1.86.2\",\n\t\"BackendState\": \"Running\",\n\t\"Health\": null,"
        "\n\t\"Peer\": {";
    for (int i = 0; i < count; ++i) {
        // Neighbouring keys belong to names that are far apart.
        const int number = i * 7919 % count;
        text +=
            fmt::format(R"({}
		"nodekey:{:064x}": {{
			"ID": "n{}CNTRL",
			"PublicKey": "nodekey:{:064x}",
			"HostName": "machine-{:04}",
			"DNSName": "machine-{:04}.tail1a2b3.ts.net.",
			"OS": "{}",
			"UserID": 8734592837465,
			"TailscaleIPs": [
				"100.64.{}.{}",
				"fd7a:115c:a1e0::{:x}"
			],
			"AllowedIPs": [
				"100.64.{}.{}/32",
				"fd7a:115c:a1e0::{:x}/128"
			],
			"Addrs": null,
			"CurAddr": "",
			"Relay": "fra",
			"PeerRelay": "",
			"RxBytes": 0,
			"TxBytes": 0,
			"Created": "2025-03-11T09:41:22.123456789Z",
			"LastWrite": "0001-01-01T00:00:00Z",
			"LastSeen": "2026-11-21T17:05:00.1Z",
			"LastHandshake": "0001-01-01T00:00:00Z",
			"Online": {},
			"ExitNode": false,
			"ExitNodeOption": false,
			"Active": false,
			"PeerAPIURL": [
				"http://100.64.{}.{}:46531"
			],
			"CapMap": {{
				"funnel": null,
				"https://tailscale.com/cap/is-owner": null
			}},
			"InNetworkMap": true,
			"InMagicSock": false,
			"InEngine": false,
			"KeyExpiry": "2027-05-04T07:08:09Z"
		}})",
                        i == 0 ? "" : ",", i, i, i, number, number, i % 4 == 0 ? "macOS" : "linux",
                        i / 256, i % 256, i, i / 256, i % 256, i, i % 2 == 0, i / 256, i % 256);
    }
    return text + "\n\t}\n}\n";
}

}  // namespace tallowcrest
