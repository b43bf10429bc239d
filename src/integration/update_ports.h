#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <variant>

namespace tallowcrest {

/// One GET request.
struct UpdateRequest {
    std::string url;            ///< https
    std::uint64_t longestBody;  ///< in bytes; a longer one is an error
    /// For the whole exchange. Absent: it goes on as long as something arrives once a minute.
    std::optional<std::chrono::seconds> timeout = {};
};

/// How a request ended.
struct UpdateReply {
    int status = 0;  ///< of HTTP; 0 when there was no response of HTTP
    std::string error =
        {};  ///< why the body did not arrive whole, in the system's words; else empty
};

/// A SHA-256 digest under way. One thread.
class Sha256 {
public:
    virtual ~Sha256() = default;
    virtual void add(std::string_view bytes) = 0;
    /// The digest of what was added, as 64 hexadecimal digits in lower case. Called once, at the
    /// end.
    virtual std::string finish() = 0;
};

/// What fetches and verifies updates. Certificates are always verified. Redirections are followed
/// within the host that was asked, over https; another one is an error. Nothing is kept between
/// requests. Called on background threads, on several at once.
class UpdateTransport {
public:
    /// Takes the next bytes of a body, and how many the server has announced in total; absent when
    /// it has not. False ends the request, which is an error.
    using TakeBytes =
        std::function<bool(std::string_view bytes, std::optional<std::uint64_t> total)>;

    virtual ~UpdateTransport() = default;

    /// Blocks until the reply is complete or a stop is requested, which is an error. `take` gets
    /// the body of a reply with the status 200, and of no other one, on the calling thread.
    virtual UpdateReply fetch(const UpdateRequest& request, const TakeBytes& take,
                              const std::stop_token& stop) = 0;

    /// Null when the library for it cannot be used.
    virtual std::unique_ptr<Sha256> startSha256() = 0;

    /// Whether `signature` is that of Ed25519 for `message` by the owner of `publicKey`, all in
    /// plain bytes. False when the library cannot be used.
    virtual bool isSigned(std::string_view publicKey, std::string_view signature,
                          std::string_view message) = 0;
};

/// Why something did not work, as its alert describes it.
struct UpdateError {
    std::string description;
};

/// A file that is being downloaded. It is removed when it is destroyed before it was published.
/// One thread at a time.
class DownloadedImage {
public:
    virtual ~DownloadedImage() = default;
    /// Absent once the bytes are written.
    virtual std::optional<UpdateError> write(std::string_view bytes) = 0;
    /// Gives the file this name, in place of another file of the name, and makes it readable by
    /// everybody: the one who installs it may be another user. Returns the absolute path.
    virtual std::variant<std::string, UpdateError> publish(const std::string& name) = 0;
};

/// The user's temporary directory. Any thread.
class ImageFolder {
public:
    virtual ~ImageFolder() = default;
    /// A new file of its own, which nobody else can read or write. What killed downloads have left
    /// in the folder is removed.
    virtual std::variant<std::unique_ptr<DownloadedImage>, UpdateError> begin() = 0;
    /// Removes an image by the path that publishing it told.
    virtual void remove(const std::string& path) = 0;
};

/// A file that the desktop was asked to open. Destroying it does not close the file; what became of
/// it is then not told any more. Main thread.
class FileOpening {
public:
    virtual ~FileOpening() = default;
};

/// Values of the build.
struct UpdateBuild {
    std::string feed = {};         ///< the address of the feed; empty: there is none
    std::string host = {};         ///< the only one that images are fetched from
    std::string version = {};      ///< of this program; empty when unknown
    std::string build = {};        ///< a decimal number; anything else counts as 0
    std::string imageEnding = {};  ///< how the names of images end on this system
    /// The public key of Ed25519, in Base64, that feeds must be signed with; empty: none.
    std::string publicKey = {};
};

/// The ports of `ProUpdater`. Null and empty without a desktop.
struct UpdatePorts {
    // Shared, because background work may outlive the component.
    std::shared_ptr<UpdateTransport> transport = {};
    std::shared_ptr<ImageFolder> images = {};
    UpdateBuild build = {};
    /// Opens a file by its absolute path with what the desktop has for it, and returns at once.
    /// `told` is called once, perhaps before that, with whether there is something that opens it.
    /// It must not destroy the result. Main thread.
    std::function<std::unique_ptr<FileOpening>(const std::string& path,
                                               std::function<void(bool isOpened)> told)>
        openFile = {};
    /// Opens an address of the web. False when there is nothing for it, as far as that is known at
    /// once. Main thread.
    std::function<bool(const std::string& url)> openAddress = {};
    bool isUnderTest = false;  ///< no check by itself
};

}  // namespace tallowcrest
