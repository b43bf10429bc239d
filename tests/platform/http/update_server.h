#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "integration/update_ports.h"
#include "tests/platform/http/test_provider.h"

namespace tallowcrest {

/// update_server.py on this machine, with a certificate for "localhost" and "127.0.0.1".
class UpdateServer {
public:
    explicit UpdateServer(const TestAuthority& authority)
        : program_([&] {
              const auto [certificate, key] = authority.certificate("DNS:localhost,IP:127.0.0.1");
              return std::vector<std::string>{
                  "python3",
                  "-B",
                  TALLOWCREST_SOURCE_DIR "/tests/platform/http/update_server.py",
                  files.path(),
                  "127.0.0.1",
                  certificate,
                  key};
          }()),
          port_(program_.line()) {}

    std::string at(const std::string& path, const std::string& host = "localhost") const {
        return "https://" + host + ':' + port_ + path;
    }

    /// Makes a file of zeros, which takes no room on disk.
    void makeZeros(const std::string& name, std::uint64_t size) const {
        files.file(name, "", 0600);
        std::filesystem::resize_file(files.path(name), size);
    }
    /// The digest of a file, in lower case.
    std::string digestOf(const std::string& name) const {
        return shellOutput("openssl dgst -sha256 -r " + files.path(name)).substr(0, 64);
    }

    /// The next line that it prints.
    std::string line() { return program_.line(); }

    TemporaryFolder files;

private:
    StartedProgram program_;
    std::string port_;
};

/// What arrived of a body.
struct Body {
    UpdateTransport::TakeBytes taker() {
        return [this](std::string_view bytes, std::optional<std::uint64_t> announced) {
            text += bytes;
            total = announced;
            return true;
        };
    }

    std::string text;
    std::optional<std::uint64_t> total;
};

}  // namespace tallowcrest
