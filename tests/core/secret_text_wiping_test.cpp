#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "core/secret_text.h"

namespace {

const void* watched = nullptr;
std::string released;  // what the watched memory held when it was released

}  // namespace

// Memory may not be read once it is released, so this function, which belongs to this whole test
// program, looks at it just before.
extern "C" int munmap(void* memory, std::size_t size) noexcept {
    if (memory != nullptr && memory == watched) {
        watched = nullptr;
        std::memcpy(released.data(), memory, released.size());
    }
    return static_cast<int>(::syscall(SYS_munmap, memory, size));
}

namespace tallowcrest {
namespace {

constexpr std::string_view secret = "a secret that must not remain";
const std::string zeros(secret.size(), '\0');

/// Begins to watch the bytes of `text`.
void watch(const SecretText& text) {
    watched = text.view().data();
    released.assign(secret.size(), '?');
}

TEST(SecretTextWiping, TheDestructorWipes) {
    {
        const SecretText text(secret);
        watch(text);
    }
    EXPECT_EQ(released, zeros);
}

TEST(SecretTextWiping, AnAssignmentWipesTheOldValue) {
    SecretText text(secret);
    watch(text);
    text = SecretText("another");
    EXPECT_EQ(text.view(), "another");
    EXPECT_EQ(released, zeros);
}

TEST(SecretTextWiping, AMovedTextIsWipedByItsNewOwner) {
    SecretText first(secret);
    watch(first);
    {
        const SecretText second(std::move(first));
        EXPECT_EQ(released, std::string(secret.size(), '?'));
    }
    EXPECT_EQ(released, zeros);
}

TEST(SecretTextWiping, TheWatchSeesWhatIsNotWiped) {
    void* const bytes =
        ::mmap(nullptr, secret.size(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(bytes, MAP_FAILED);
    std::memcpy(bytes, secret.data(), secret.size());
    watched = bytes;
    released.assign(secret.size(), '?');
    ::munmap(bytes, secret.size());
    EXPECT_EQ(released, secret);
}

}  // namespace
}  // namespace tallowcrest
