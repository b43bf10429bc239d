#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/architecture/source_text.h"

namespace tallowcrest::architecture {

/// One place where the source breaks a rule.
struct Violation {
    std::string path;
    std::size_t line;  ///< from 1; 0 for the whole file
    std::string what;  ///< what is wrong, in words for the person who fixes it

    bool operator==(const Violation&) const = default;
};

/// The longest allowed file.
inline constexpr std::size_t maximumLines = 400;

/// The layer of a file below src/: "core" for "core/date.h", "platform/linux" for
/// "platform/linux/places.cpp", "platform" for a file directly in that folder, and
/// "presentation/words" also for the `_lines` of a screen. Empty for a file directly in src/.
std::string layerOf(std::string_view path);

/// Whether files of `from` may include files of `to`. False for an unknown layer.
bool mayInclude(std::string_view from, std::string_view to);

/// Whether files of the layer may include Qt.
bool mayUseQt(std::string_view layer);

/// Includes of a layer that may not be included, or with a path that does not start at src/.
std::vector<Violation> forbiddenIncludes(const std::vector<SourceFile>& files);

/// Qt includes in layers that must build without Qt.
std::vector<Violation> strayQtIncludes(const std::vector<SourceFile>& files);

/// Conditions on the operating system outside platform/.
std::vector<Violation> strayPlatformConditions(const std::vector<SourceFile>& files);

/// Includes of the whole monitor by a file of presentation/screens that is not a page: cards take
/// plain values and emit signals.
std::vector<Violation> monitorOutsidePages(const std::vector<SourceFile>& files);

/// Includes against the order of the window's folders: state, then screens, then shell, of which
/// each may include those before it.
std::vector<Violation> upwardWindowIncludes(const std::vector<SourceFile>& files);

/// Includes of one screen by another; what several screens use is in presentation/screens/shared.
std::vector<Violation> includesBetweenScreens(const std::vector<SourceFile>& files);

/// Files of more than `maximumLines` lines.
std::vector<Violation> overlongFiles(const std::vector<SourceFile>& files);

}  // namespace tallowcrest::architecture
