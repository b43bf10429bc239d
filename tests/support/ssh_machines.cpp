#include "tests/support/ssh_machines.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/sched.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "platform/base/unique_fd.h"
#include "tests/platform/linux/pid_namespace.h"
#include "tests/support/file_text.h"
#include "tests/support/run_program.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

constexpr const char* sshdPath = "/usr/sbin/sshd";
// The private /run is the place for everything: it goes with the process, whatever ends it.
constexpr const char* accounts = "/run/passwd";
constexpr const char* clientSettings = "/run/ssh";

void require(bool condition, const std::string& what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

/// An ordinary user remains that user, with all rights over the new namespaces until it runs
/// another program.
bool enterNamespaces() {
    constexpr int own = CLONE_NEWNS | CLONE_NEWNET;
    const std::string user = std::to_string(::getuid());
    const std::string group = std::to_string(::getgid());
    if (::unshare(own) != 0) {
        // Where root is the only user, the server could not become another one.
        if (::getuid() == 0 || ::unshare(CLONE_NEWUSER | own) != 0) {
            return false;
        }
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << user + " " + user + " 1";
        std::ofstream("/proc/self/gid_map") << group + " " + group + " 1";
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool bind(const char* source, const char* place) {
    return ::mount(source, place, nullptr, MS_BIND, nullptr) == 0;
}

std::string account(const std::string& name, const std::string& shell) {
    return name + ":x:" + std::to_string(::getuid()) + ":" + std::to_string(::getgid()) +
           "::" + (SshMachines::folder() / "home").string() + ":" + shell + "\n";
}

/// The first account is the one by which the client names its user. The server has one for the part
/// of it that must not be root.
void writeAccounts() {
    std::ofstream(accounts) << account("owner", "/bin/sh")
                            << "sshd:x:65534:65534::/run/sshd:/usr/sbin/nologin\n";
}

bool replaceSystemFiles() {
    if (::mount("none", "/run", "tmpfs", MS_NOSUID | MS_NODEV, "mode=755") != 0) {
        return false;
    }
    fs::create_directory("/run/sshd");
    fs::create_directory(clientSettings);
    // As the client's package has it.
    std::ofstream(std::string(clientSettings) + "/ssh_config") << "SendEnv LANG LC_*\n";
    writeAccounts();
    return bind(accounts, "/etc/passwd") && bind(clientSettings, "/etc/ssh");
}

/// The IPv4 addresses are those that IPv6 maps to them.
sockaddr_in6 sshPort(const std::string& address) {
    const bool isIPv6 = address.find(':') != std::string::npos;
    sockaddr_in6 result{};
    result.sin6_family = AF_INET6;
    result.sin6_port = htons(22);
    require(::inet_pton(AF_INET6, (isIPv6 ? address : "::ffff:" + address).c_str(),
                        &result.sin6_addr) == 1,
            "no address: " + address);
    return result;
}

UniqueFD tcpSocket() {
    return UniqueFD(::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

/// `call` is `bind` or `connect`.
template <class Call>
bool atPort(Call call, const UniqueFD& socket, const std::string& address) {
    const sockaddr_in6 place = sshPort(address);
    return call(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0;
}

/// On the loopback device, all addresses of a network are those of this machine.
bool addTailnetAddresses() {
    const UniqueFD control(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const auto request = [&control](const std::string& device, unsigned long what,
                                    const std::string& address) {
        ifreq values{};
        device.copy(values.ifr_name, IFNAMSIZ - 1);
        if (address.empty()) {
            values.ifr_flags = IFF_UP | IFF_LOOPBACK;
        } else {
            sockaddr_in value{};
            value.sin_family = AF_INET;
            ::inet_pton(AF_INET, address.c_str(), &value.sin_addr);
            std::memcpy(&values.ifr_addr, &value, sizeof value);
        }
        return ::ioctl(control.get(), what, &values) == 0;
    };
    // `in6_ifreq`: <linux/ipv6.h> cannot be included beside <netinet/in.h>.
    struct {
        in6_addr address;
        std::uint32_t prefixLength;
        int device;
    } alone{{}, 128, static_cast<int>(::if_nametoindex("lo"))};
    ::inet_pton(AF_INET6, SshMachines::onlyIPv6, &alone.address);
    const UniqueFD control6(::socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    return request("lo", SIOCSIFFLAGS, "") && request("lo:0", SIOCSIFADDR, "100.64.0.1") &&
           request("lo:0", SIOCSIFNETMASK, "255.192.0.0") &&
           ::ioctl(control6.get(), SIOCSIFADDR, &alone) == 0;
}

std::string enter() {
    if (!fs::exists(sshdPath) || !fs::exists("/usr/bin/ssh")) {
        return "the secure shell is not installed on this machine";
    }
    if (!enterNamespaces()) {
        return "this account may not create a network namespace";
    }
    if (!replaceSystemFiles()) {
        return std::string("this account may not mount: ") + std::strerror(errno);
    }
    if (!addTailnetAddresses()) {
        return std::string("no addresses: ") + std::strerror(errno);
    }
    return pid_namespace::run(pid_namespace::Procfs::own, [] { return 0; }).reason;
}

void makeKey(const std::string& name) {
    const ProgramResult result = runProgram(
        {.path = "/usr/bin/ssh-keygen",
         .arguments = {"-q", "-t", "ed25519", "-N", "", "-f", SshMachines::folder() / name}});
    require(result.status == 0, "no key: " + result.standardError);
}

UniqueFD listenAt(const std::string& address, bool isDead) {
    UniqueFD listener = tcpSocket();
    constexpr int on = 1;
    ::setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    require(
        atPort(::bind, listener, address) && ::listen(listener.get(), isDead ? 0 : SOMAXCONN) == 0,
        "cannot listen at " + address);
    return listener;
}

/// The system drops what arrives for a listener whose queue is full. The caller keeps the one
/// connection that fills it.
UniqueFD fillQueue(const std::string& address) {
    UniqueFD filler = tcpSocket();
    require(atPort(::connect, filler, address), "no connection");
    return filler;
}

[[noreturn]] void beBusy(const std::string& name) {
    ::prctl(PR_SET_NAME, name.c_str());
    const std::string newName = SshMachines::folder() / "Editor";
    const std::string end = SshMachines::folder() / "end";
    while (::access(end.c_str(), F_OK) != 0) {
        if (::access(newName.c_str(), F_OK) == 0) {
            ::prctl(PR_SET_NAME, "Editor");
        }
    }
    ::_exit(0);
}

}  // namespace

const std::string& SshMachines::obstacle() {
    static const std::string reason = enter();
    return reason;
}

const fs::path& SshMachines::folder() {
    static const fs::path path = "/run/tailnet";
    return path;
}

std::string SshMachines::program(const std::string& name, const std::string& text) {
    const fs::path path = folder() / name;
    std::ofstream(path, std::ios::binary) << text;
    fs::permissions(path, fs::perms::owner_all);
    return path;
}

void SshMachines::installCommand(const std::string& name, const std::string& text) {
    static const fs::path original = "/run/usr-bin";
    const fs::path place = "/usr/bin";
    if (!fs::exists(original)) {
        fs::create_directory(original);
        require(bind(place.c_str(), original.c_str()) &&
                    ::mount("none", place.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, "mode=755") == 0,
                "nothing can be mounted at /usr/bin");
        for (const fs::directory_entry& each : fs::directory_iterator(original)) {
            fs::create_symlink(each.path(), place / each.path().filename());
        }
    }
    fs::remove(place / name);
    fs::copy_file(program(name, text), place / name);
}

SshMachines::SshMachines() {
    require(obstacle().empty(), obstacle());
    fs::remove_all(folder());
    fs::create_directories(folder() / "home/.ssh");
    writeAccounts();
    makeKey("home/.ssh/id_ed25519");
    // An agent would offer the keys of the person who runs the test.
    std::ofstream(folder() / "home/.ssh/config") << "IdentityAgent none\n";
    makeKey("host_key");
    makeKey("other_host_key");
}

void SshMachines::addAccount(const std::string& name, const std::string& shell) {
    std::ofstream(accounts, std::ios::app) << account(name, shell);
}

SshMachines::Server SshMachines::sshd(const std::string& settings, const std::string& hostKey) {
    const fs::path file = folder() / ("sshd_config_" + std::to_string(configurations_++));
    // The first line for a setting counts.
    std::ofstream(file) << settings << "\nHostKey " << (folder() / hostKey).string()
                        << "\nAuthorizedKeysFile "
                        << (folder() / "home/.ssh/id_ed25519.pub").string()
                        << "\nStrictModes no\nUsePAM no\nPasswordAuthentication no\n"
                           "KbdInteractiveAuthentication no\n";
    return [file = file.string(), logFile = (folder() / "sshd.log").string()](int connection) {
        ::dup2(connection, STDIN_FILENO);
        ::dup2(connection, STDOUT_FILENO);
        ::execl(sshdPath, sshdPath, "-i", "-f", file.c_str(), "-E", logFile.c_str(), nullptr);
    };
}

void SshMachines::start() {
    std::array<int, 2> ready{};
    require(::pipe2(ready.data(), O_CLOEXEC) == 0, "no pipe");
    const UniqueFD reader(ready[0]);
    UniqueFD writer(ready[1]);
    clone_args arguments{};
    arguments.flags = CLONE_NEWPID | CLONE_NEWNS;
    arguments.exit_signal = SIGCHLD;
    process_ = static_cast<pid_t>(::syscall(SYS_clone3, &arguments, sizeof arguments));
    if (process_ == 0) {
        try {
            serve(writer.get());
        } catch (const std::exception& problem) {
            std::fprintf(stderr, "%s\n", problem.what());
            ::_exit(1);
        }
    }
    writer.reset();
    char byte = 0;
    require(::read(reader.get(), &byte, 1) == 1, "the machines did not start");
}

void SshMachines::serve(int ready) const {
    // When process 1 of a namespace ends, the kernel kills all others in it.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::signal(SIGCHLD, SIG_IGN);
    require(::mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) == 0,
            "no /proc");
    std::vector<UniqueFD> listeners;
    std::vector<UniqueFD> fillers;
    std::vector<pollfd> polled;
    for (const auto& [address, server] : machines_) {
        listeners.push_back(listenAt(address, !server));
        if (!server) {
            fillers.push_back(fillQueue(address));
        }
        // poll() ignores a descriptor of -1.
        polled.push_back({server ? listeners.back().get() : -1, POLLIN, 0});
    }
    for (const std::string& name : busyProcesses_) {
        if (::fork() == 0) {
            beBusy(name);
        }
    }
    require(::write(ready, "", 1) == 1, "nobody waits");
    for (;;) {
        ::poll(polled.data(), polled.size(), -1);
        for (std::size_t i = 0; i < polled.size(); ++i) {
            if ((polled[i].revents & POLLIN) == 0) {
                continue;
            }
            const UniqueFD connection(::accept4(polled[i].fd, nullptr, nullptr, SOCK_CLOEXEC));
            if (::fork() == 0) {
                std::signal(SIGCHLD, SIG_DFL);
                machines_[i].second(connection.get());
                ::_exit(0);
            }
        }
    }
}

void SshMachines::end() {
    if (process_ > 0) {
        pid_namespace::killAndWait(process_);
    }
    process_ = -1;
    machines_.clear();
    busyProcesses_.clear();
}

std::string SshMachines::log() {
    return fileText(folder() / "sshd.log");
}

}  // namespace tallowcrest
