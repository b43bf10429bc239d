#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/architecture/source_text.h"

namespace tallowcrest::architecture {

/// One place where the tree leaves its plan.
struct Violation {
    std::string path;
    std::size_t line;  ///< counted from 1; 0 when the whole file is meant
    std::string what;  ///< a sentence for the person who has to mend it

    bool operator==(const Violation&) const = default;
};

/// How long a file may be before it has to be split.
inline constexpr std::size_t maximumLines = 440;

/// The folder of src/ that counts as one layer: "core" for "core/date.h", "platform/linux" for
/// "platform/linux/places.cpp", "platform" for a file of its own there. Empty for a file that lies
/// in no folder.
std::string layerOf(std::string_view path);

/// Whether files of `from` may include files of `to`. False for a layer that nobody knows.
bool mayInclude(std::string_view from, std::string_view to);

/// Includes of a layer that may not be included, or that are not written from src/.
std::vector<Violation> forbiddenIncludes(const std::vector<SourceFile>& files);

/// Qt includes where the program must build without Qt.
std::vector<Violation> strayQtIncludes(const std::vector<SourceFile>& files);

/// Conditions on the operating system outside platform/.
std::vector<Violation> strayPlatformConditions(const std::vector<SourceFile>& files);

/// Files of more than `maximumLines` lines.
std::vector<Violation> overlongFiles(const std::vector<SourceFile>& files);

/// Link edges that the build files declare although an include along them would be forbidden,
/// includes across layers that no declared edge carries, Qt linked where there is no Qt (the
/// program without a window included), and folders with sources that declare no layer. `files`
/// holds the sources and every CMakeLists.txt.
std::vector<Violation> wrongLinkEdges(const std::vector<SourceFile>& files);

}  // namespace tallowcrest::architecture
