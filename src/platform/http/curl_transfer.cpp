#include "platform/http/curl_transfer.h"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <openssl/x509_vfy.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

#include "platform/base/releaser.h"
#include "platform/http/curl_library.h"

namespace tallowcrest {
namespace {

using Easy = std::unique_ptr<CURL, Releaser<curl_easy_cleanup>>;
using Multi = std::unique_ptr<CURLM, Releaser<curl_multi_cleanup>>;
using Url = std::unique_ptr<CURLU, Releaser<curl_url_cleanup>>;
using HeaderLines = std::unique_ptr<curl_slist, Releaser<curl_slist_free_all>>;
using CurlText = std::unique_ptr<char, Releaser<curl_free>>;

HttpReply failure(const char* words) {
    return {.transportError = words};
}

std::string partOf(CURLU* url, CURLUPart which) {
    char* text = nullptr;
    curl_url_get(url, which, &text, 0);
    const CurlText part(text);
    return part ? part.get() : "";
}

/// The host, without brackets.
std::string hostOf(CURLU* url) {
    std::string host = partOf(url, CURLUPART_HOST);
    if (host.starts_with('[') && host.ends_with(']')) {
        host = host.substr(1, host.size() - 2);
    }
    return host;
}

/// Null without memory. Without a token there is no line for it.
HeaderLines headerLines(const SecretText& bearerToken) {
    HeaderLines lines(curl_slist_append(nullptr, "Content-Type: application/json"));
    if (!lines || bearerToken.isEmpty()) {
        return lines;
    }
    constexpr std::string_view field = "Authorization: Bearer ";
    std::string line;
    line.reserve(field.size() + bearerToken.view().size());
    line.append(field).append(bearerToken.view());
    if (curl_slist_append(lines.get(), line.c_str()) == nullptr) {
        lines.reset();
    }
    wipe(line);
    return lines;
}

/// The body of a reply as it arrives.
struct Arriving {
    CURL* easy;
    const CurlDownload* download;  ///< null when `data` keeps the body
    std::size_t left;              ///< how many more bytes may come
    WipedText data = {};
    CURLcode refusal = CURLE_OK;

    /// False to end the transfer.
    bool take(std::string_view bytes) {
        if (bytes.size() > left) {
            refusal = CURLE_FILESIZE_EXCEEDED;
            return false;
        }
        left -= bytes.size();
        if (download == nullptr) {
            data.append(bytes);
            return true;
        }
        long status = 0;
        curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
        constexpr long ok = 200;
        if (status != ok) {
            return true;
        }
        curl_off_t total = -1;
        curl_easy_getinfo(easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &total);
        return download->take(
            bytes, total < 0 ? std::nullopt : std::optional(static_cast<std::uint64_t>(total)));
    }
};

/// libcurl calls this with each piece of the body. Any result but its size ends the transfer.
std::size_t takeBody(char* bytes, std::size_t one, std::size_t count, void* context) {
    auto& arriving = *static_cast<Arriving*>(context);
    const std::size_t size = one * count;
    try {
        return arriving.take({bytes, size}) ? size : 0;
    } catch (const std::bad_alloc&) {  // libcurl knows no exceptions
        arriving.refusal = CURLE_OUT_OF_MEMORY;
        return 0;
    }
}

/// Performs the transfer that is set up in `easy`.
CURLcode perform(CURL* easy, const std::stop_token& stop) {
    const Multi multi(curl_multi_init());
    if (!multi || curl_multi_add_handle(multi.get(), easy) != CURLM_OK) {
        return CURLE_FAILED_INIT;
    }
    CURLcode result = CURLE_ABORTED_BY_CALLBACK;
    {
        const std::stop_callback wake(stop, [&multi] { curl_multi_wakeup(multi.get()); });
        int running = 1;
        while (running != 0 && !stop.stop_requested() &&
               curl_multi_perform(multi.get(), &running) == CURLM_OK) {
            constexpr int longestPoll =
                1000;  // milliseconds; libcurl shortens it to its own timers
            if (running != 0) {
                curl_multi_poll(multi.get(), nullptr, 0, longestPoll, nullptr);
            }
        }
        int left = 0;
        if (const CURLMsg* message = curl_multi_info_read(multi.get(), &left)) {
            result = message->data.result;
        }
    }
    curl_multi_remove_handle(multi.get(), easy);
    return result;
}

/// Whether OpenSSL finds an authority in the folder by the hash of its name ("5ed36f99.0").
bool hasHashedNames(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    const std::filesystem::directory_iterator end;
    while (!error && entry != end && entry->path().extension() != ".0") {
        entry.increment(error);
    }
    return !error && entry != end;
}

/// Whether a transfer failed because the authority of a certificate was not found. Also true for a
/// library that does not tell why it refused a certificate.
bool lacksAuthority(CURL* easy) {
    curl_tlssessioninfo* library = nullptr;
    if (curl_easy_getinfo(easy, CURLINFO_TLS_SSL_PTR, &library) != CURLE_OK ||
        library->backend != CURLSSLBACKEND_OPENSSL) {
        return true;
    }
    const auto isMissing = [easy](CURLINFO which) {
        long code = 0;
        curl_easy_getinfo(easy, which, &code);
        constexpr std::array codes{
            X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT, X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY,
            X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE, X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT,
            X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN};
        return std::find(codes.begin(), codes.end(), code) != codes.end();
    };
    return isMissing(CURLINFO_SSL_VERIFYRESULT) || isMissing(CURLINFO_PROXY_SSL_VERIFYRESULT);
}

HttpReply transferred(const CurlTransfer& transfer, const std::stop_token& stop) {
    const Url url(prepareCurl() ? curl_url() : nullptr);
    const Easy easy(url ? curl_easy_init() : nullptr);
    const HeaderLines header =
        easy && !transfer.download ? headerLines(transfer.bearerToken) : nullptr;
    if (!easy || (!header && !transfer.download)) {
        return failure(curl_easy_strerror(CURLE_FAILED_INIT));
    }
    if (const CURLUcode code = curl_url_set(url.get(), CURLUPART_URL, transfer.url.c_str(), 0);
        code != CURLUE_OK) {
        return failure(curl_url_strerror(code));
    }
    const bool isLoopback = isLoopbackHost(hostOf(url.get()));
    // A request to this machine needs no proxy, and a proxy elsewhere would reach another machine.
    const std::string proxy = isLoopback ? std::string() : transfer.proxies.proxy;

    Arriving arriving{.easy = easy.get(),
                      .download = transfer.download ? &*transfer.download : nullptr,
                      .left = transfer.longestReply};
    std::array<char, CURL_ERROR_SIZE> words{};
    CURLcode refused = CURLE_OK;
    const auto set = [&](CURLoption option, auto value) {
        const CURLcode code = curl_easy_setopt(easy.get(), option, value);
        refused = refused == CURLE_OK ? code : refused;
    };
    set(CURLOPT_ERRORBUFFER, words.data());
    set(CURLOPT_CURLU, url.get());
    set(CURLOPT_PROTOCOLS_STR, isLoopback && !transfer.download ? "https,http" : "https");
    // It copies headers less often than later versions, and into libcurl's own memory only.
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_HTTPHEADER, header.get());
    set(CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE));  // nothing of it for a proxy
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_PROXY_SSL_VERIFYPEER, 1L);
    set(CURLOPT_PROXY_SSL_VERIFYHOST, 2L);
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    const bool areOfSystem = transfer.certificateAuthorities.empty();
    const curl_version_info_data& library = *curl_version_info(CURLVERSION_NOW);
    const char* const authorities =
        areOfSystem ? library.capath : transfer.certificateAuthorities.c_str();
    // Reading the file of all authorities takes 20 ms and 1 MB.
    const bool isLookUp = authorities != nullptr && hasHashedNames(authorities);
    if (isLookUp || !areOfSystem) {
        set(CURLOPT_CAPATH, isLookUp ? authorities : nullptr);
        set(CURLOPT_CAINFO, isLookUp ? nullptr : authorities);
    }
    // Both are set even if empty: libcurl would otherwise read the environment, without our lock.
    set(CURLOPT_PROXY, proxy.c_str());
    set(CURLOPT_NOPROXY, transfer.proxies.exceptions.c_str());
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(transfer.timeout.count()));
    set(CURLOPT_QUICK_EXIT, 1L);  // does not wait for a name server at the end
    // For a length that is told in advance. libcurl itself limits the header.
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(transfer.longestReply));
    set(CURLOPT_WRITEFUNCTION, takeBody);
    set(CURLOPT_WRITEDATA, &arriving);
    if (transfer.download) {
        constexpr long silentSeconds = 60;
        set(CURLOPT_LOW_SPEED_LIMIT, 1L);  // bytes per second
        set(CURLOPT_LOW_SPEED_TIME, silentSeconds);
        constexpr long largestBuffer = 256L * 1024;
        set(CURLOPT_BUFFERSIZE, largestBuffer);
    } else {
        set(CURLOPT_POSTFIELDS, transfer.body.data());
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(transfer.body.size()));
    }
    if (refused != CURLE_OK) {
        return failure(curl_easy_strerror(refused));
    }

    CURLcode result = perform(easy.get(), stop);
    if (result == CURLE_PEER_FAILED_VERIFICATION && areOfSystem && isLookUp &&
        lacksAuthority(easy.get())) {
        // The file can have authorities that the folder lacks. Nothing of the request was sent yet.
        set(CURLOPT_CAINFO, library.cainfo);
        curl_off_t microseconds = 0;
        curl_easy_getinfo(easy.get(), CURLINFO_TOTAL_TIME_T, &microseconds);
        if (const auto left = transfer.timeout.count() - microseconds / 1000;
            transfer.timeout.count() != 0) {
            set(CURLOPT_TIMEOUT_MS, static_cast<long>(std::max<std::int64_t>(left, 1)));
        }
        if (refused != CURLE_OK) {
            return failure(curl_easy_strerror(refused));
        }
        result = perform(easy.get(), stop);
    }
    if (arriving.refusal != CURLE_OK) {
        return failure(curl_easy_strerror(arriving.refusal));
    }
    if (result != CURLE_OK) {
        return failure(words.front() != '\0' ? words.data() : curl_easy_strerror(result));
    }
    long status = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &status);
    HttpReply reply{.status = static_cast<int>(status)};
    if (transfer.download) {
        char* redirection = nullptr;  // libcurl's own
        curl_easy_getinfo(easy.get(), CURLINFO_REDIRECT_URL, &redirection);
        *transfer.download->redirection = redirection == nullptr ? "" : redirection;
    }
    if (!arriving.data.empty()) {
        reply.data = std::move(arriving.data);
    }
    return reply;
}

}  // namespace

HttpReply outOfMemory() {
    return failure(curl_easy_strerror(CURLE_OUT_OF_MEMORY));
}

HttpReply performTransfer(const CurlTransfer& transfer, const std::stop_token& stop) {
    try {
        return transferred(transfer, stop);
    } catch (const std::bad_alloc&) {
        return outOfMemory();
    }
}

bool isLoopbackHost(const std::string& host) {
    constexpr std::uint32_t loopbackNetwork = 127;
    in_addr four{};
    if (::inet_pton(AF_INET, host.c_str(), &four) == 1) {
        return ntohl(four.s_addr) >> 24U == loopbackNetwork;
    }
    in6_addr six{};
    if (::inet_pton(AF_INET6, host.c_str(), &six) == 1) {
        return IN6_IS_ADDR_LOOPBACK(&six);
    }
    return curl_strequal(host.c_str(), "localhost") != 0;
}

bool areOfOneSecureHost(const std::string& first, const std::string& second) {
    const auto secureHostOf = [](const std::string& address) {
        const Url url(curl_url());
        const bool isSecure =
            url && curl_url_set(url.get(), CURLUPART_URL, address.c_str(), 0) == CURLUE_OK &&
            partOf(url.get(), CURLUPART_SCHEME) == "https";
        return isSecure ? hostOf(url.get()) : std::string();
    };
    const std::string host = secureHostOf(first);
    return !host.empty() && curl_strequal(host.c_str(), secureHostOf(second).c_str()) != 0;
}

}  // namespace tallowcrest
