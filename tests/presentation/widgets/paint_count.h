#pragma once

#include <utility>

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace tallowcrest {

/// Shows a widget without putting it on the screen, and paints it.
inline void showUnseen(QWidget& widget) {
    widget.setAttribute(Qt::WA_DontShowOnScreen);
    widget.show();
    QCoreApplication::processEvents();
}

/// Counts the paint events of a widget and its children.
class PaintCount : public QObject {
public:
    explicit PaintCount(const QWidget& widget) : widget_(widget) {
        QCoreApplication::processEvents();
        qApp->installEventFilter(this);
    }
    ~PaintCount() override { qApp->removeEventFilter(this); }

    /// The number of paint events since the last call, including those that are pending.
    int take() {
        QCoreApplication::processEvents();
        return std::exchange(count_, 0);
    }

    bool eventFilter(QObject* object, QEvent* event) override {
        const auto* painted = qobject_cast<QWidget*>(object);
        if (event->type() == QEvent::Paint && painted != nullptr &&
            (painted == &widget_ || widget_.isAncestorOf(painted))) {
            ++count_;
        }
        return false;
    }

private:
    const QWidget& widget_;
    int count_ = 0;
};

}  // namespace tallowcrest
