#pragma once

#include <QProcessEnvironment>

namespace tallowcrest::desktop {

/// That of this program without its activation token, for programs that it starts. Main thread.
QProcessEnvironment environmentOfOthers();

}  // namespace tallowcrest::desktop
