#pragma once

#include <cmath>

#include "presentation/widgets/stable_line_graph.h"

namespace tallowcrest {

/// Formats of a graph in which a time is its seconds: "64" and, in minutes, "1m".
inline GraphFormats plainGraphFormats() {
    using namespace Qt::StringLiterals;
    return {[](double percent) { return u"%1%"_s.arg(std::lround(percent)); },
            {[](double seconds, double) { return u"%1m"_s.arg(std::floor(seconds / 60)); },
             [](double seconds, double) { return QString::number(seconds); }}};
}

}  // namespace tallowcrest
