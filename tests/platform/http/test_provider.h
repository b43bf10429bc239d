#pragma once

#include <chrono>
#include <initializer_list>
#include <string>

#include "advisor/advisor_ports.h"
#include "tests/platform/support/started_program.h"
#include "tests/support/run_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// An authority for certificates that nobody trusts but the tests.
class TestAuthority {
public:
    TestAuthority() {
        run(R"(openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes \
                   -keyout ca.key -out ca.pem -subj '/CN=Test authority' -days 2)");
    }

    /// Its own certificate, a file.
    std::string path() const { return folder_.path("ca.pem"); }

    /// A folder in which it has the hash of its name.
    std::string folder() const {
        run("mkdir -p hashed && cp ca.pem hashed && openssl rehash hashed");
        return folder_.path("hashed");
    }

    /// The paths of a certificate for `names` ("DNS:localhost") that expires in `days`, which can
    /// be below 0, and of its key.
    std::pair<std::string, std::string> certificate(const std::string& names, int days = 2) const {
        run("printf 'subjectAltName=" + names +
            "' >names && openssl req -new -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes "
            "-keyout server.key -subj /CN=server -out server.csr && openssl x509 -req -in "
            "server.csr -CA ca.pem -CAkey ca.key -CAcreateserial -extfile names -out server.pem "
            "-days " +
            std::to_string(days));
        return {folder_.path("server.pem"), folder_.path("server.key")};
    }

private:
    void run(const std::string& command) const {
        shellOutput("cd " + folder_.path().string() + " && " + command + " 2>/dev/null");
    }

    TemporaryFolder folder_;
};

/// provider_server.py, which names the ways of answering.
class TestProvider {
public:
    /// With plain HTTP.
    explicit TestProvider(const std::string& address = "127.0.0.1")
        : TestProvider(std::vector<std::string>{address}) {}
    explicit TestProvider(const std::pair<std::string, std::string>& certificate,
                          const std::string& address = "127.0.0.1")
        : TestProvider(std::vector<std::string>{address, certificate.first, certificate.second}) {}
    /// Tells each connection, and waits before its handshake.
    TestProvider(const std::pair<std::string, std::string>& certificate,
                 std::chrono::milliseconds pause)
        : TestProvider({"127.0.0.1", certificate.first, certificate.second,
                        std::to_string(std::chrono::duration<double>(pause).count())}) {}

    /// "https://HOST:port", with this server's port.
    std::string at(const std::string& host) const { return host + ':' + port_; }
    const std::string& port() const { return port_; }

    /// The next line that it prints.
    std::string line() { return program_.line(); }
    /// Kills it. `line()` still returns what it has printed.
    void end() { program_.end(); }

private:
    explicit TestProvider(std::vector<std::string> arguments)
        : program_([&] {
              arguments.insert(arguments.begin(),
                               {"python3", "-B",
                                TALLOWCREST_SOURCE_DIR "/tests/platform/http/provider_server.py"});
              return arguments;
          }()),
          port_(program_.line()) {}

    StartedProgram program_;
    std::string port_;
};

/// Posts "{}" with the token "sk-test".
inline std::optional<HttpReply> post(HttpExchange& exchange, const std::string& url,
                                     std::chrono::seconds wait = std::chrono::seconds(30),
                                     std::chrono::seconds timeout = std::chrono::seconds(60),
                                     const std::stop_token& stop = {}) {
    const SecretText token("sk-test");
    const std::string body = "{}";
    return exchange.post({url, token, body, wait, timeout}, stop);
}

}  // namespace tallowcrest
