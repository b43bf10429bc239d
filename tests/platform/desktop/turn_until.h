#pragma once

#include <functional>

#include <QTest>

namespace tallowcrest {

/// Turns Qt's loop until `isSo`; false when it is not so before a generous limit.
inline bool turnUntil(const std::function<bool()>& isSo) {
    return QTest::qWaitFor(isSo, 20'000);
}

}  // namespace tallowcrest
