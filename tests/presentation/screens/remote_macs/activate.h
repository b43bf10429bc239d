#pragma once

#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>

namespace tallowcrest {

/// Makes a window that was shown unseen the active one, which can have the focus.
inline void activate(QWidget& window) {
    window.hide();
    window.setAttribute(Qt::WA_DontShowOnScreen, false);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

}  // namespace tallowcrest
