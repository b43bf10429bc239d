#pragma once

#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

namespace tallowcrest {

/// Shows a widget and counts how often it is painted from then on.
class PaintCount : public QObject {
public:
    explicit PaintCount(QWidget& widget) {
        widget.setAttribute(Qt::WA_DontShowOnScreen);
        widget.show();
        QCoreApplication::processEvents();
        widget.installEventFilter(this);
        QCoreApplication::processEvents();
        count_ = 0;
    }

    /// The paintings since the last call, with all that is due now.
    int take() {
        QCoreApplication::processEvents();
        return std::exchange(count_, 0);
    }

    bool eventFilter(QObject* object, QEvent* event) override {
        count_ += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(object, event);
    }

private:
    int count_ = 0;
};

}  // namespace tallowcrest
