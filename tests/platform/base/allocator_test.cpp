#include "platform/base/allocator.h"

#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

/// How many arenas the C library has.
std::size_t arenas() {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const stream = ::open_memstream(&text, &size);
    ::malloc_info(0, stream);
    std::fclose(stream);
    const std::string info(text, size);
    std::free(text);
    std::size_t count = 0;
    for (auto at = info.find("<heap nr="); at != std::string::npos;
         at = info.find("<heap nr=", at + 1)) {
        ++count;
    }
    return count;
}

TEST(Allocator, ThreadsGetNoArenaOfTheirOwn) {
    useOneArena();
    const std::size_t before = arenas();
    std::thread([] { const std::string text(1000, 'x'); }).join();
    EXPECT_EQ(arenas(), before);
}

}  // namespace
}  // namespace tallowcrest
