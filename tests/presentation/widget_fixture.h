#pragma once

#include <chrono>

#include <QAbstractButton>
#include <QApplication>
#include <QTest>
#include <QTimer>
#include <gmock/gmock.h>

#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/elided_label.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// How long each `SettlingButton` within `widget` stays disabled; also applies while it is.
inline void setSettlingTime(const QWidget& widget, std::chrono::milliseconds time) {
    const auto timers = widget.findChildren<QTimer*>(u"settling"_s);
    ASSERT_FALSE(timers.isEmpty());
    for (QTimer* timer : timers) {
        timer->setInterval(time);
    }
}

/// A widget whose parts tests find and operate, in the style of the real program.
class WidgetFixture : public testing::Test {
protected:
    static void SetUpTestSuite() { QApplication::setStyle(new CrestStyle); }

    virtual QWidget& root() = 0;

    /// Runs everything that is queued on the main thread.
    virtual void settle() {
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }

    /// The visible widget with this object name, or null.
    template <class Widget = QWidget>
    Widget* visible(const char* identifier) {
        for (Widget* each : root().findChildren<Widget*>(QString::fromLatin1(identifier))) {
            if (each->isVisible()) {
                return each;
            }
        }
        return nullptr;
    }

    QString textOf(const char* identifier) {
        const auto* label = visible<ElidedLabel>(identifier);
        return label == nullptr ? u"(not shown)"_s : label->text();
    }

    void click(const char* identifier) {
        auto* button = visible<QAbstractButton>(identifier);
        ASSERT_NE(button, nullptr) << identifier;
        QTest::mouseClick(button, Qt::LeftButton);
        settle();
    }

    /// Sends the key to the focused widget, or to the root if none has the focus.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* target = QApplication::focusWidget();
        QTest::keyClick(target == nullptr ? &root() : target, key, modifiers);
        settle();
    }
};

}  // namespace tallowcrest
