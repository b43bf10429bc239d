#pragma once

#include <memory>
#include <stdexcept>

#include <QImage>
#include <QPointer>
#include <QScrollArea>

#include "actions/actions.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "monitor/auto_rules.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/shared/process_table_model.h"
#include "presentation/screens/shared/process_table_view.h"
#include "presentation/shell/dashboard_window.h"
#include "reports/reports.h"
#include "sampling/latest_sample.h"
#include "tests/presentation/scoped_locale.h"
#include "tests/presentation/widget_fixture.h"
#include "tests/support/fake_machine.h"

namespace tallowcrest {

/// The real window over a fake machine, in the style of the real program.
class WindowFixture : public WidgetFixture {
protected:
    WindowFixture() {
        machine.locale = windowLocale("en_US");
        MemorySnapshot& memory = machine.metrics->memory;
        memory.totalGB = 16.0;
        memory.usedGB = 9.5;
        memory.freeGB = 6.5;
        memory.wiredGB = 2.25;
        memory.compressedGB = 0.5;
        memory.pressure = 59.4;
        machine.addProcess(800, "/usr/bin/photo-indexer", 130.0, 2048.0);
        machine.addProcess(700, "/usr/bin/editor", 30.0, 1024.0);
        machine.addProcess(1, "/usr/lib/systemd/systemd", 0.0, 12.0);
    }
    ~WindowFixture() override {
        window_.reset();
        QApplication::processEvents();
    }

    DashboardWindow& window() {
        if (window_ == nullptr) {
            window_ = std::make_unique<DashboardWindow>(machine.monitor());
        }
        return *window_;
    }

    /// Shows the window and waits until it takes keys.
    void show() {
        window().show();
        window().activateWindow();
        settle();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    }

    void showWithSample() {
        show();
        machine.finishSamples();
        settle();
    }

    QWidget& root() override { return window(); }

    /// Runs everything that is queued on the main thread, by the monitor and by Qt.
    void settle() override {
        machine.mainQueue.drain();
        WidgetFixture::settle();
    }

    void showProcesses() {
        window().state().navigation.setSelectedRoute(AppRoute::load);
        showWithSample();
    }

    void tick() {
        machine.tick();
        settle();
    }

    void goTo(AppRoute route) {
        window().state().navigation.setSelectedRoute(route);
        settle();
    }

    /// The visible scroll area that contains `widget`.
    QScrollArea& scrollAreaAround(const QWidget& widget) {
        for (QScrollArea* each : window().findChildren<QScrollArea*>()) {
            if (each->isVisible() && each->isAncestorOf(&widget)) {
                return *each;
            }
        }
        throw std::runtime_error("nothing scrolls it");
    }

    /// The object names of `count` widgets in the Tab order, beginning with the focused one.
    QString tabOrder(int count) {
        QStringList order;
        for (int presses = 0; presses < count; ++presses) {
            order.append(QApplication::focusWidget()->objectName());
            press(Qt::Key_Tab);
        }
        return order.join(u' ');
    }

    AppRoute route() { return window().state().navigation.selectedRoute(); }
    const std::string& lastAction() { return machine.monitor().log().lastAction(); }
    std::optional<std::int64_t> selectedPID() {
        return machine.monitor().actions().review.selectedPID();
    }

    ProcessTableView& table() { return *visible<ProcessTableView>("processes.table"); }
    ProcessTableModel& model() { return *window().findChild<ProcessTableModel*>(); }
    QRect cell(int row, int column) { return table().visualRect(model().index(row, column)); }

    QImage paintedTable() {
        return table().viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    FakeMachine machine;

private:
    std::unique_ptr<DashboardWindow> window_;
};

}  // namespace tallowcrest
