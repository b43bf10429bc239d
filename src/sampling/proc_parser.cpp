#include "sampling/proc_parser.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace tallowcrest {
namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

/// Reads the blank-separated fields of one line.
class Fields {
public:
    explicit Fields(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {}

    /// Skips `count` fields of any content.
    void skip(int count) {
        for (; count > 0; --count) {
            skipBlanks();
            while (at_ != end_ && !endsField(*at_)) {
                ++at_;
            }
        }
    }

    /// The next field. Absent when it is not a number, does not fit, or may be truncated because
    /// nothing follows it.
    std::optional<std::uint64_t> number() {
        skipBlanks();
        const char* const begin = at_;
        std::uint64_t value = 0;
        while (at_ != end_ && *at_ >= '0' && *at_ <= '9') {
            const auto digit = static_cast<std::uint64_t>(*at_ - '0');
            if (value > (largest - digit) / 10) {
                return std::nullopt;
            }
            value = value * 10 + digit;
            ++at_;
        }
        if (at_ == begin || at_ == end_ || !endsField(*at_)) {
            return std::nullopt;
        }
        return value;
    }

    bool number(std::uint64_t& value) {
        const auto parsed = number();
        value = parsed.value_or(0);
        return parsed.has_value();
    }

    bool atLineEnd() {
        skipBlanks();
        return at_ != end_ && *at_ == '\n';
    }

private:
    static bool endsField(char character) { return character == ' ' || character == '\n'; }

    void skipBlanks() {
        while (at_ != end_ && *at_ == ' ') {
            ++at_;
        }
    }

    const char* at_;
    const char* end_;
};

std::uint64_t saturatingSum(std::uint64_t first, std::uint64_t second) {
    return first > largest - second ? largest : first + second;
}

/// Kernels that hide process ids write 0.
std::optional<std::int32_t> processID(std::optional<std::uint64_t> number) {
    constexpr auto highest = static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
    return number && *number > 0 && *number <= highest
               ? std::optional(static_cast<std::int32_t>(*number))
               : std::nullopt;
}

/// Searches forwards, which the library does faster, because the last match is near the start.
std::size_t findLast(std::string_view text, char character) {
    std::size_t last = std::string_view::npos;
    for (std::size_t at = text.find(character); at != std::string_view::npos;
         at = text.find(character, at + 1)) {
        last = at;
    }
    return last;
}

}  // namespace

std::optional<ProcessStat> parseProcessStat(std::string_view text) {
    // Only the name can contain brackets, any number of them, so it ends at the last one.
    const std::size_t open = text.find('(');
    const std::size_t close = findLast(text, ')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
        return std::nullopt;
    }
    if (text.size() < close + 4 || text[close + 1] != ' ' || text[close + 3] != ' ') {
        return std::nullopt;
    }
    ProcessStat stat;
    stat.name = text.substr(open + 1, close - open - 1);
    stat.state = text[close + 2];

    Fields fields(text.substr(close + 3));
    fields.skip(5);
    bool whole = fields.number(stat.flags);
    fields.skip(4);
    whole = whole && fields.number(stat.userTicks) && fields.number(stat.systemTicks);
    fields.skip(6);
    whole = whole && fields.number(stat.startTicks);
    fields.skip(1);
    whole = whole && fields.number(stat.residentPages);
    fields.skip(1);
    whole = whole && fields.number(stat.startCode);
    fields.skip(1);
    whole = whole && fields.number(stat.startStack);
    return whole ? std::optional(stat) : std::nullopt;
}

std::optional<CPUTicks> parseProcessorTicks(std::string_view text) {
    constexpr std::string_view label = "cpu ";
    if (!text.starts_with(label)) {
        return std::nullopt;
    }
    // user, nice, system, idle, iowait, irq, softirq, steal. The guest times that follow are
    // already counted in user and nice. Old kernels end the line earlier.
    std::array<std::uint64_t, 8> counters{};
    constexpr std::size_t required = 4;
    Fields fields(text.substr(label.size()));
    for (std::size_t index = 0; index < counters.size(); ++index) {
        if (index >= required && fields.atLineEnd()) {
            break;
        }
        if (!fields.number(counters[index])) {
            return std::nullopt;
        }
    }
    const auto& [user, nice, system, idle, iowait, irq, softirq, steal] = counters;
    CPUTicks ticks;
    ticks.user = user;
    ticks.nice = nice;
    ticks.idle = saturatingSum(idle, iowait);
    ticks.system = saturatingSum(saturatingSum(system, irq), saturatingSum(softirq, steal));
    return ticks;
}

MemoryClasses parseMemoryInfo(std::string_view text, std::uint64_t zramBytes, double pageSize) {
    struct Entry {
        std::string_view key;
        std::optional<double> bytes;
    };
    enum Key : std::size_t {
        total,
        free,
        available,
        buffers,
        cached,
        unevictable,
        slab,
        kernelStack,
        pageTables,
        zswap,
        keyCount
    };
    std::array<Entry, keyCount> entries{{{"MemTotal", {}},
                                         {"MemFree", {}},
                                         {"MemAvailable", {}},
                                         {"Buffers", {}},
                                         {"Cached", {}},
                                         {"Unevictable", {}},
                                         {"SUnreclaim", {}},
                                         {"KernelStack", {}},
                                         {"PageTables", {}},
                                         {"Zswap", {}}}};
    while (!text.empty()) {
        const std::size_t lineEnd = text.find('\n');
        if (lineEnd == std::string_view::npos) {
            break;  // truncated, so its number may be too
        }
        const std::string_view line = text.substr(0, lineEnd + 1);
        text.remove_prefix(line.size());
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) {
            continue;
        }
        const auto entry = std::find_if(
            entries.begin(), entries.end(),
            [&](const Entry& candidate) { return candidate.key == line.substr(0, colon); });
        if (entry == entries.end()) {
            continue;
        }
        if (const auto kibibytes = Fields(line.substr(colon + 1)).number()) {
            entry->bytes = static_cast<double>(*kibibytes) * 1024.0;
        }
    }
    const auto bytes = [&](Key key) { return entries[key].bytes.value_or(0.0); };
    const double availableBytes =
        entries[available].bytes.value_or(bytes(free) + bytes(cached) + bytes(buffers));

    MemoryClasses classes;
    classes.physicalBytes = bytes(total);
    classes.pageSize = pageSize;
    classes.freeBytes = bytes(free);
    classes.speculativeBytes = std::max(availableBytes - bytes(free), 0.0);
    classes.wiredBytes = bytes(unevictable) + bytes(slab) + bytes(kernelStack) + bytes(pageTables);
    classes.compressedBytes = bytes(zswap) + static_cast<double>(zramBytes);
    classes.activeBytes =
        std::max(bytes(total) - availableBytes - classes.wiredBytes - classes.compressedBytes, 0.0);
    return classes;
}

std::optional<std::int32_t> parseNewestProcessID(std::string_view text) {
    Fields fields(text);
    fields.skip(4);
    return processID(fields.number());
}

std::optional<std::int32_t> parseSoleProcessID(std::string_view text) {
    constexpr std::string_view label = "\nNSpid:\t";
    const std::size_t found = text.find(label);
    if (found == std::string_view::npos) {
        return std::nullopt;
    }
    // One id for each namespace, separated by tabs. number() rejects an id that a tab follows.
    return processID(Fields(text.substr(found + label.size())).number());
}

std::optional<std::uint64_t> parseZramUsedBytes(std::string_view text) {
    Fields fields(text);
    fields.skip(2);
    return fields.number();
}

}  // namespace tallowcrest
