#pragma once

#include <vector>

#include "tests/architecture/layer_rules.h"
#include "tests/architecture/source_text.h"

namespace tallowcrest::architecture {

/// Declared link edges along which an include would be forbidden, includes across layers without a
/// declared edge, Qt linked to a layer that must build without it or to the program without a
/// window, and folders with sources that declare no layer. `files` contains the sources and every
/// CMakeLists.txt.
std::vector<Violation> wrongLinkEdges(const std::vector<SourceFile>& files);

}  // namespace tallowcrest::architecture
