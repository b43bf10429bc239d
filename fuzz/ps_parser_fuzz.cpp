#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "sampling/ps_parser.h"

#include "fuzz/require.h"

namespace {

void requireFigure(double figure) {
    require(figure >= 0.0 && figure <= 1e12);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string text(data, data + size);

    const auto rows = parseProcessRows(text);
    const auto lineFeeds = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    require(rows.size() <= lineFeeds + 1);
    for (const ProcessSample& row : rows) {
        requireFigure(row.cpu);
        requireFigure(row.memoryPercent);
        requireFigure(row.rssMB);
        require(!row.command.empty() && row.command.front() != ' ');
        require(row.command.find('\n') == std::string::npos);
        require(row.arguments == row.command);
        require(text.find(row.command) != std::string::npos);
        require(!row.displayName().empty());
    }

    // Lines are independent: valid ones around the text do not change its rows.
    const auto surrounded = parseProcessRows("1 0 0 0 before\n" + text + "\n2 0 0 0 after\n");
    require(surrounded.size() == rows.size() + 2);
    require(std::equal(rows.begin(), rows.end(), surrounded.begin() + 1));
    return 0;
}
