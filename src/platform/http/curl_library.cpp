#include "platform/http/curl_library.h"

#include <curl/curl.h>
#include <openssl/crypto.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "core/secret_text.h"

namespace tallowcrest {
namespace {

/// Precedes each block of the libraries' memory: its size, which the C library does not tell
/// everywhere.
struct alignas(std::max_align_t) BlockHeader {
    std::size_t size;
};

BlockHeader* headerOf(void* memory) {
    return static_cast<BlockHeader*>(memory) - 1;
}

void* allocate(std::size_t size) {
    if (size > SIZE_MAX - sizeof(BlockHeader)) {
        return nullptr;
    }
    auto* const header = static_cast<BlockHeader*>(std::malloc(sizeof(BlockHeader) + size));
    if (header == nullptr) {
        return nullptr;
    }
    header->size = size;
    return header + 1;
}

void release(void* memory) {
    if (memory != nullptr) {
        wipe({static_cast<char*>(memory), headerOf(memory)->size});
        std::free(headerOf(memory));
    }
}

void* reallocate(void* memory, std::size_t size) {
    void* const result = allocate(size);
    if (result != nullptr && memory != nullptr) {
        std::memcpy(result, memory, std::min(size, headerOf(memory)->size));
        release(memory);
    }
    return result;
}

char* duplicate(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    auto* const result = static_cast<char*>(allocate(size));
    if (result != nullptr) {
        std::memcpy(result, text, size);
    }
    return result;
}

void* allocateZeros(std::size_t count, std::size_t size) {
    if (size != 0 && count > SIZE_MAX / size) {
        return nullptr;
    }
    void* const result = allocate(count * size);
    if (result != nullptr) {
        std::memset(result, 0, count * size);
    }
    return result;
}

// The same for OpenSSL, which also tells the place in its source.

void* allocateForOpenSSL(std::size_t size, const char* /*file*/, int /*line*/) {
    return allocate(size);
}

void* reallocateForOpenSSL(void* memory, std::size_t size, const char* /*file*/, int /*line*/) {
    if (size == 0) {
        release(memory);
        return nullptr;
    }
    return reallocate(memory, size);
}

void releaseForOpenSSL(void* memory, const char* /*file*/, int /*line*/) {
    release(memory);
}

}  // namespace

bool prepareCurl() {
    static std::once_flag once;
    static bool isReady = false;
    std::call_once(once, [] {
        // Fails where something else has used OpenSSL before. Its own memory then remains as it is.
        CRYPTO_set_mem_functions(allocateForOpenSSL, reallocateForOpenSSL, releaseForOpenSSL);
        isReady = curl_global_init_mem(CURL_GLOBAL_DEFAULT, allocate, release, reallocate,
                                       duplicate, allocateZeros) == CURLE_OK;
    });
    return isReady;
}

}  // namespace tallowcrest
