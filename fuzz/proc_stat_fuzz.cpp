#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "sampling/proc_parser.h"

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string text(data, data + size);

    if (const auto stat = parseProcessStat(text)) {
        require(text.find('(' + std::string(stat->name) + ") " + stat->state + ' ') !=
                std::string::npos);
        // Text after the last used field has no effect, unless it contains a closing bracket.
        const std::string longer = text + " 0 0\n";
        const auto again = parseProcessStat(longer);
        require(again && again->name == stat->name && again->userTicks == stat->userTicks &&
                again->systemTicks == stat->systemTicks && again->startTicks == stat->startTicks &&
                again->residentPages == stat->residentPages);
    }

    // The name has no effect on the other fields.
    const std::string tail =
        " R 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25\n";
    const std::string withName = "1 (" + text + ')' + tail;
    const auto named = parseProcessStat(withName);
    require(named && named->name == text && named->state == 'R');
    require(named->flags == 6 && named->userTicks == 11 && named->systemTicks == 12);
    require(named->startTicks == 19 && named->residentPages == 21);
    require(named->startCode == 23 && named->startStack == 25);

    if (const auto ticks = parseProcessorTicks(text)) {
        require(text.starts_with("cpu "));
        require(parseProcessorTicks(text + "cpu0 1 2 3 4\n") == ticks);
    }

    if (const auto newest = parseNewestProcessID(text)) {
        require(*newest > 0 && text.find(std::to_string(*newest)) != std::string::npos);
        require(parseNewestProcessID(text + " 5\n") == newest);
    }
    // Any four words can come before it.
    if (!text.empty() && text.find_first_of(" \n") == std::string::npos) {
        const std::string load = text + ' ' + text + ' ' + text + ' ' + text + " 812\n";
        require(parseNewestProcessID(load) == 812);
    }
    if (const auto sole = parseSoleProcessID(text)) {
        require(*sole > 0 && text.find("\nNSpid:\t") != std::string::npos);
        require(parseSoleProcessID(text + "\nNSpid:\t1\t2\n") == sole);
    }
    if (text.find("NSpid") == std::string::npos) {
        require(parseSoleProcessID(text + "\nNSpid:\t812\n") == 812);
        require(!parseSoleProcessID(text + "\nNSpid:\t812\t1\n"));
    }
    parseZramUsedBytes(text);
    return 0;
}
