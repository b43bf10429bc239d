#pragma once

#include <array>
#include <mutex>
#include <string>

namespace tallowcrest {

/// Guards the environment of this process, which has no lock of its own: removing a variable moves
/// the ones after it. Held while the environment is changed, and while any thread but the main one
/// reads it, also inside a library. Any thread, for moments only.
std::mutex& environmentLock();

/// The variables in which a desktop passes an activation token, which allows one window to come to
/// the front: the current one and the older one. A token is meant for one process only.
inline constexpr const char* activationTokenVariable = "XDG_ACTIVATION_TOKEN";
inline constexpr const char* startupIDVariable = "DESKTOP_STARTUP_ID";
inline constexpr std::array activationVariables{activationTokenVariable, startupIDVariable};

/// The variable with the file to which libraries for TLS write the secrets of each connection.
inline constexpr const char* secretsFileVariable = "SSLKEYLOGFILE";

/// Removes `secretsFileVariable`. Main thread, before there are others: libraries read variables
/// without `environmentLock`.
void forbidSecretsFile();

/// The value of a variable; empty when it is not set. Main thread.
std::string environmentVariable(const char* name);

/// The activation token that this process was started with; empty without one. Main thread.
std::string startupActivationToken();

/// The account that this process runs under. Fields that the system does not know are empty.
struct UserAccount {
    std::string name;
    std::string homeDirectory;  ///< absolute path
};

/// Main thread.
UserAccount userAccount();

/// The folder that a variable of the XDG rules names, else the folder `usual` of the home
/// directory. By these rules a relative path counts as not set. Empty when the home directory is
/// unknown. Main thread.
std::string baseFolder(const char* variable, const std::string& usual);

}  // namespace tallowcrest
