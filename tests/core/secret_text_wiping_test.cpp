#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "core/secret_text.h"

namespace {

const void* watched = nullptr;
std::string released;  // what the watched memory held when it was released

}  // namespace

// Memory may not be read once it is released, so the operators of arrays, which belong to this
// whole test program, look at it just before.
void* operator new[](std::size_t size) {
    if (void* const memory = std::malloc(size > 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete[](void* memory) noexcept {
    if (memory != nullptr && memory == watched) {
        watched = nullptr;
        std::memcpy(released.data(), memory, released.size());
    }
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    operator delete[](memory);
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
    auto* const bytes = new char[secret.size()];
    std::memcpy(bytes, secret.data(), secret.size());
    watched = bytes;
    released.assign(secret.size(), '?');
    delete[] bytes;
    EXPECT_EQ(released, secret);
}

}  // namespace
}  // namespace tallowcrest
