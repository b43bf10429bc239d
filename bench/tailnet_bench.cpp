// The state of the tailnet: what a reading costs in the background, and its publication on the main
// thread.

#include <unistd.h>

#include <cstdint>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>

#include <benchmark/benchmark.h>

#include "actions/desktop_actions.h"
#include "actions/tool_runner.h"
#include "platform/base/local_socket_exchange.h"
#include "platform/locale/posix_locale.h"
#include "platform/tools/tool_launcher_posix.h"
#include "remote/local_api.h"
#include "remote/tailnet.h"
#include "tests/platform/support/test_daemon.h"
#include "tests/support/fake_tailscale.h"
#include "tests/support/status_of_peers.h"
#include "tests/support/test_locales.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

const Locale& americanEnglish() {
    static const PosixLocale locale(LocaleNames{"en_US", "en_US"});
    return locale;
}

void parsing(benchmark::State& state) {
    const std::string status = statusOfPeers(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(parseTailStatus(status, americanEnglish()));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(status.size()));
}

/// Of a state that is the one before except for its last device, which is the costliest to compare;
/// what is replaced is destroyed.
void publishing(benchmark::State& state) {
    TestServices services;
    FakeTailscale tailscale;
    ToolRunner tools(tailscale.allowed, tailscale, services.jobs, services.log);
    Pasteboard pasteboard(services.log, {});
    Tailnet tailnet(services.services, {tools, americanEnglish(), {}, ""}, pasteboard);
    TailnetState first =
        *parseTailStatus(statusOfPeers(static_cast<int>(state.range(0))), americanEnglish());
    TailnetState second = first;
    second.tailDevices.back().active = true;
    for (auto _ : state) {
        state.PauseTiming();
        TailnetState next = second;
        std::swap(first, second);
        state.ResumeTiming();
        tailnet.publish(std::move(next));
        services.mainQueue.turn();
    }
}

/// With a tool that prints a status at once: the least that asking it twice can cost.
void askingTheTool(benchmark::State& state) {
    TestServices services;
    FakeTailscale tailscale;
    tailscale.folder.file("status", statusOfPeers(static_cast<int>(state.range(0))), 0600);
    tailscale.folder.file("tailscale", "#!/bin/sh\n[ $# -eq 2 ] && exec cat \"${0%/*}/status\"\n",
                          0755);
    PosixToolLauncher launcher;
    ToolRunner tools(tailscale.allowed, launcher, services.jobs, services.log);
    const TailnetSources sources{tools, americanEnglish(), {}, tailscale.cli};
    for (auto _ : state) {
        benchmark::DoNotOptimize(readTailnet(sources, {}));
    }
}

/// With a daemon that answers at once. The time of the processor is that of our side.
void askingTheDaemon(benchmark::State& state) {
    TestServices services;
    FakeTailscale tailscale;
    ToolRunner tools(tailscale.allowed, tailscale, services.jobs, services.log);
    const std::string answer =
        "HTTP/1.0 200 OK\r\n\r\n" + statusOfPeers(static_cast<int>(state.range(0)));
    const std::string socket = tailscale.folder.path("daemon.sock");
    const TailnetSources sources{tools, americanEnglish(),
                                 [&socket](std::string_view request, const std::stop_token& stop) {
                                     return exchangeOverLocalSocket(socket, request, stop);
                                 },
                                 tailscale.cli};
    for (auto _ : state) {
        state.PauseTiming();
        ::unlink(socket.c_str());
        {
            const TestDaemon daemon(socket, [&answer](int connection) {
                received(connection, local_api::statusRequest.size());
                send(connection, answer);
            });
            state.ResumeTiming();
            benchmark::DoNotOptimize(readTailnet(sources, {}));
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}

BENCHMARK(parsing)->Arg(1)->Arg(40)->Arg(100)->Arg(2000)->Unit(benchmark::kMicrosecond);
BENCHMARK(publishing)->Arg(40)->Arg(100)->Arg(2000)->Unit(benchmark::kMicrosecond);
BENCHMARK(askingTheDaemon)->Arg(40)->Arg(100)->Arg(2000)->Unit(benchmark::kMicrosecond);
BENCHMARK(askingTheTool)->Arg(100)->Arg(2000)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
}  // namespace tallowcrest
