#include "presentation/shell/window_return.h"

#include <algorithm>

#include <QApplication>

#include "presentation/shell/dashboard_window.h"

namespace tallowcrest {

void returnWhenActivated(DashboardWindow& window) {
    QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &window,
                     [&window](Qt::ApplicationState state) {
                         const QWidgetList windows = QApplication::topLevelWidgets();
                         if (state == Qt::ApplicationActive &&
                             std::none_of(windows.begin(), windows.end(),
                                          [](const QWidget* each) { return each->isVisible(); })) {
                             window.bringToFront();
                         }
                     });
}

}  // namespace tallowcrest
