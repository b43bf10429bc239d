#pragma once

#include <memory>
#include <stdexcept>

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QPointer>
#include <QScrollArea>
#include <QTest>
#include <gmock/gmock.h>

#include "presentation/screens/load/process_table_model.h"
#include "presentation/screens/load/process_table_view.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/elided_label.h"
#include "tests/presentation/scoped_locale.h"
#include "tests/support/fake_machine.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// The real window over a fake machine, in the look of the real program.
class WindowFixture : public testing::Test {
protected:
    static void SetUpTestSuite() { QApplication::setStyle(new CrestStyle); }

    WindowFixture() {
        machine.locale = icuLocale("en_US");
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
            window_ = std::make_unique<DashboardWindow>(machine.monitor(), machine.mainQueue);
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

    /// Runs what is due on the main thread, of the monitor and of Qt.
    void settle() {
        machine.mainQueue.drain();
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
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

    /// The visible widget of that identifier, or null.
    template <class Widget = QWidget>
    Widget* visible(const char* identifier) {
        for (Widget* each : window().findChildren<Widget*>(QString::fromLatin1(identifier))) {
            if (each->isVisible()) {
                return each;
            }
        }
        return nullptr;
    }

    /// The page that `widget` scrolls with.
    QScrollArea& scrollAreaAround(const QWidget& widget) {
        for (QScrollArea* each : window().findChildren<QScrollArea*>()) {
            if (each->isVisible() && each->isAncestorOf(&widget)) {
                return *each;
            }
        }
        throw std::runtime_error("nothing scrolls it");
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

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* target = QApplication::focusWidget();
        QTest::keyClick(target == nullptr ? &window() : target, key, modifiers);
        settle();
    }

    AppRoute route() { return window().state().navigation.selectedRoute(); }
    const std::string& lastAction() { return machine.monitor().log().lastAction(); }
    std::optional<std::int64_t> selectedPID() { return machine.monitor().review().selectedPID(); }

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
