#include <openssl/evp.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/base/releaser.h"
#include "platform/http/curl_update_transport.h"

namespace tallowcrest {
namespace {

using Context = std::unique_ptr<EVP_MD_CTX, Releaser<EVP_MD_CTX_free>>;
using Key = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY_free>>;

const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

class EvpSha256 final : public Sha256 {
public:
    explicit EvpSha256(Context context) : context_(std::move(context)) {}

    void add(std::string_view bytes) override {
        isWhole_ = isWhole_ && EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()) == 1;
    }

    std::string finish() override {
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
        unsigned size = 0;
        // Without a digest nothing is equal to the one of a release.
        if (!isWhole_ || EVP_DigestFinal_ex(context_.get(), digest.data(), &size) != 1) {
            return {};
        }
        constexpr std::string_view digits = "0123456789abcdef";
        std::string text;
        for (std::size_t i = 0; i < size; ++i) {
            text += digits[digest.at(i) >> 4U];
            text += digits[digest.at(i) & 0xFU];
        }
        return text;
    }

private:
    Context context_;
    bool isWhole_ = true;
};

}  // namespace

std::unique_ptr<Sha256> CurlUpdateTransport::startSha256() {
    Context context(EVP_MD_CTX_new());
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        return nullptr;
    }
    return std::make_unique<EvpSha256>(std::move(context));
}

bool CurlUpdateTransport::isSigned(std::string_view publicKey, std::string_view signature,
                                   std::string_view message) {
    const Key key(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytesOf(publicKey),
                                              publicKey.size()));
    const Context context(EVP_MD_CTX_new());
    return key && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), bytesOf(signature), signature.size(), bytesOf(message),
                            message.size()) == 1;
}

}  // namespace tallowcrest
