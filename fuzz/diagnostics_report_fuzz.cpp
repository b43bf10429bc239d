#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/locale.h"
#include "core/text.h"
#include "reports/diagnostics_report.h"
#include "sampling/app_impact.h"
#include "tests/reports/report_state.h"

#include "fuzz/require.h"

namespace {

using namespace tallowcrest;

/// Takes values from the front of the input; zeros and empty texts when it is used up.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    std::size_t upTo(std::size_t most) {
        std::uint8_t byte = 0;
        take(&byte, sizeof(byte));
        return byte % (most + 1);
    }
    bool flag() { return upTo(1) == 1; }
    double number() {
        double value = 0.0;
        take(&value, sizeof(value));
        return value;
    }
    std::int64_t integer() {
        std::int64_t value = 0;
        take(&value, sizeof(value));
        return value;
    }
    std::string text() {
        const std::string_view piece = rest_.substr(0, upTo(40));
        rest_.remove_prefix(std::min(piece.size(), rest_.size()));
        return std::string(piece);
    }

private:
    void take(void* value, std::size_t size) {
        const std::size_t length = std::min(size, rest_.size());
        std::memcpy(value, rest_.data(), length);
        rest_.remove_prefix(length);
    }

    std::string_view rest_;
};

using State = ReportState;

constexpr std::size_t mostRows = 3;

void readSnapshot(Input& input, State& state) {
    SystemSnapshot& snapshot = state.snapshot;
    snapshot.sampledAt = {input.number()};
    snapshot.cpuPercent = input.number();
    snapshot.memory.usedGB = snapshot.memory.totalGB = input.number();
    snapshot.memory.pressure = input.number();
    snapshot.disk.freeGB = snapshot.disk.totalGB = input.number();
    for (std::size_t rows = input.upTo(mostRows); rows > 0; --rows) {
        snapshot.appImpacts.push_back({.name = input.text(),
                                       .processCount = input.integer(),
                                       .totalCPU = input.number(),
                                       .totalMemoryMB = input.number(),
                                       .topPID = {},
                                       .protectedCount = input.integer()});
    }
    for (std::size_t rows = input.upTo(mostRows); rows > 0; --rows) {
        ProcessSample row;
        row.pid = input.integer();
        row.cpu = input.number();
        row.rssMB = input.number();
        row.command = input.text();
        snapshot.topProcesses.push_back(row);
    }
}

void readRemoteHealth(Input& input, State& state) {
    for (std::size_t rows = input.upTo(mostRows); rows > 0; --rows) {
        RemoteHealth health;
        health.hostName = input.text();
        health.address = input.text();
        health.status = static_cast<RemoteHealth::Status>(input.upTo(6));
        if (input.flag()) {
            health.cpuPercent = health.memoryPercent = input.number();
            health.osVersion = input.text();
            health.topCPUProcess = input.text();
            health.topMemoryProcess = input.text();
        }
        for (std::size_t processes = input.upTo(mostRows); processes > 0; --processes) {
            health.topProcesses.push_back(
                {input.integer(), input.number(), input.number(), input.text()});
        }
        health.recommendation = input.text();
        health.setupHint = input.text();
        state.remoteHealth.push_back(health);
    }
}

void readSettings(Input& input, State& state) {
    Settings& settings = state.settings;
    settings.warningThreshold = input.number();
    settings.sshUsername = input.text();
    for (std::size_t names = input.upTo(mostRows); names > 0; --names) {
        settings.protectedAppNames.insert(input.text());
    }
    settings.diskMinimumFreeGB = settings.diskMaxCleanupGB = input.number();
    settings.diskCleanupAgeDays = input.number();
    settings.openAIModel = input.text();
    settings.aiAutonomyMode = static_cast<AIAutonomyMode>(input.upTo(2));
}

State readState(Input& input) {
    State state;
    readSnapshot(input, state);
    readRemoteHealth(input, state);
    readSettings(input, state);
    for (std::size_t rows = input.upTo(mostRows); rows > 0; --rows) {
        state.sessionInsights.push_back({UUID(), input.text(), input.text(), input.text()});
    }
    state.openAIKeySaved = input.flag();
    state.aiInsight = input.text();
    for (std::size_t actions = input.upTo(mostRows); actions > 0; --actions) {
        state.aiActions.push_back({UUID(), input.text(), input.text(), "", ""});
    }
    for (std::size_t records = input.upTo(mostRows); records > 0; --records) {
        state.aiTrustRecords[input.text()] = {
            input.text(), input.integer(), input.integer(), input.integer(), {}};
    }
    for (std::size_t events = input.upTo(20); events > 0; --events) {
        state.activityLog.push_back({UUID(), {input.number()}, input.text(), input.text()});
    }
    return state;
}

std::size_t rowsFor(std::size_t items) {
    return std::max<std::size_t>(items, 1);
}

std::size_t expectedLines(const State& state) {
    constexpr std::size_t fixed = 7     // the machine
                                  + 12  // blank lines and headings of six sections up to the rules
                                  + 4   // the rules
                                  + 9   // the advisor's section without the trust rows
                                  + 2;  // blank line and heading of the events
    return fixed + rowsFor(state.snapshot.appImpacts.size()) +
           rowsFor(state.sessionInsights.size()) + rowsFor(state.snapshot.topProcesses.size()) +
           rowsFor(state.remoteHealth.size()) + rowsFor(state.settings.protectedAppNames.size()) +
           rowsFor(state.aiTrustRecords.size()) +
           rowsFor(std::min<std::size_t>(state.activityLog.size(), 12));
}

std::size_t expectedTabs(const State& state) {
    constexpr std::size_t headings = 4 + 3;
    return headings + 4 * state.snapshot.appImpacts.size() + 2 * state.sessionInsights.size() +
           3 * state.snapshot.topProcesses.size() + 10 * state.remoteHealth.size() +
           4 * state.aiTrustRecords.size() +
           2 * std::min<std::size_t>(state.activityLog.size(), 12);
}

std::size_t countOf(std::string_view text, char character) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), character));
}

void checkShape(const State& state, const std::string& report) {
    require(isValidUTF8(report));
    require(countOf(report, '\n') + 1 == expectedLines(state));
    require(countOf(report, '\t') == expectedTabs(state));
    for (const char c : report) {
        require(c == '\n' || c == '\t' || static_cast<unsigned char>(c) >= 0x20);
        require(c != 0x7F);
    }
    for (const std::string_view separator : {"\u0085", "\u2028", "\u2029", "\u202E", "\u2066"}) {
        require(report.find(separator) == std::string::npos);
    }
}

/// The same state with other values wherever a redacted report hides them.
State withOtherSecrets(State state) {
    for (ProcessSample& row : state.snapshot.topProcesses) {
        row.pid = ~row.pid;
        row.command = appGroupName(row);
        row.arguments = "other";
    }
    for (RemoteHealth& health : state.remoteHealth) {
        health.address += "other";
        for (RemoteProcess& process : health.topProcesses) {
            process.pid = ~process.pid;
            process.command = normalizedAppName(process.displayName());
        }
    }
    return state;
}

}  // namespace

/// With any facts, the report has exactly the expected lines and columns, and a redacted one does
/// not depend on what it hides.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const State state = readState(input);
    for (const bool redacted : {false, true}) {
        checkShape(state, state.report(redacted));
    }
    require(withOtherSecrets(state).report(true) == state.report(true));
    return 0;
}
