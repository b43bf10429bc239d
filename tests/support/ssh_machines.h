#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tallowcrest {

/// Other machines of a tailnet, for the real client of the secure shell: each is an address of the
/// tailnet's range at whose port 22 the real server, or what a test puts there, answers.
///
/// The process that uses them lives in a network of its own, in which every address of that range
/// is its own and a port refuses connections unless a machine has been added there. Its accounts,
/// `/etc/ssh` and `/run` are its own too. The owner of this process is called "owner" there.
class SshMachines {
public:
    /// Serves one connection, in a process of its own that ends with the call.
    using Server = std::function<void(int connection)>;

    /// The address in the range of IPv6.
    static constexpr const char* onlyIPv6 = "fd7a:115c:a1e0::7";

    /// Why there can be no such machines here; empty if there can. The first call moves this
    /// process into its network for the rest of its life. It must have only one thread then.
    static const std::string& obstacle();

    /// Throws when there is an obstacle. One object at a time.
    SshMachines();
    SshMachines(const SshMachines&) = delete;
    SshMachines& operator=(const SshMachines&) = delete;
    ~SshMachines() { end(); }

    /// Everything that is only for a test: "home" with the owner's ".ssh" for one.
    static const std::filesystem::path& folder();
    /// Writes a file in `folder` that may be run, and returns its path.
    static std::string program(const std::string& name, const std::string& text);

    /// Puts a program at `/usr/bin/NAME` for this process and its children.
    static void installCommand(const std::string& name, const std::string& text);

    /// Lets an account log in with this shell, by the key of the owner.
    void addAccount(const std::string& name, const std::string& shell);

    /// The real server. `settings` are more lines of its configuration.
    Server sshd(const std::string& settings = {}, const std::string& hostKey = "host_key");
    /// The same, with a host key of its own.
    Server sshdWithAnotherKey() { return sshd({}, "other_host_key"); }

    void add(std::string address, Server server) {
        machines_.emplace_back(std::move(address), std::move(server));
    }
    /// A machine that does not even refuse a connection.
    void addDead(std::string address) { add(std::move(address), {}); }
    /// A process that uses one core. It is called "Editor" once a file of that name is in `folder`,
    /// and ends once there is one named "end".
    void addBusyProcess(std::string name) { busyProcesses_.push_back(std::move(name)); }

    /// From now on they answer. All have the same processes, and see no others.
    void start();
    /// Ends all their processes, and forgets what was added.
    void end();

    /// What the servers logged.
    static std::string log();

private:
    [[noreturn]] void serve(int ready) const;

    std::vector<std::pair<std::string, Server>> machines_;
    std::vector<std::string> busyProcesses_;
    int configurations_ = 0;
    pid_t process_ = -1;
};

}  // namespace tallowcrest
