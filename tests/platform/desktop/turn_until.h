#pragma once

#include <functional>

#include <QTest>

namespace tallowcrest {

/// Runs Qt's event loop until `condition` holds; false if it does not within a generous time limit.
inline bool turnUntil(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 20'000);
}

}  // namespace tallowcrest
