#pragma once

#include <functional>
#include <string>

namespace tallowcrest {

/// Runs the work of a test in a process of its own that sees only its own mounts, and expects that
/// the work ends without a failure. Skips the test where this account may have no mounts: call it
/// last.
void inOwnMounts(const std::function<void()>& work);

/// Runs the work of a test in a process of its own, which it may restrict for good. Call it last,
/// because a skip in it skips the test.
void inOwnProcess(const std::function<void()>& work);

/// For use inside `inOwnMounts`: a file system in memory at `folder`, which is created. `options`
/// are those of the mount, for example "size=1m". Throws where it fails, as below.
void mountMemory(const std::string& folder, const std::string& options = "size=16m");

/// Lets `place` show `source`, a folder or a file. A folder is created.
void mountBind(const std::string& source, const std::string& place);

/// From now on `/` is a file system in memory, mounted at `folder`, which is created. It shows each
/// folder and link of the old one but `without`, an absolute path.
void enterOwnRoot(const std::string& folder, const std::string& without);

/// From now on nothing below the mount `folder` can be changed.
void makeReadOnly(const std::string& folder);

/// Gives this process mounts of its own; false where this account may not have them.
bool enterOwnMounts();

}  // namespace tallowcrest
