#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include "presentation/screens/remote_macs/remote_health_block.h"
#include "presentation/widgets/menu_button.h"
#include "tests/presentation/screens/remote_macs/remote_machine.h"
#include "tests/presentation/screens/shared/block_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// The block of one remote machine, on a page of its own.
class RemoteHealthBlockFixture : public OverviewBlockTest {
protected:
    RemoteHealthBlockFixture() {
        QObject::connect(&block, &RemoteHealthBlock::processCopyWanted,
                         [this](const RemoteHealth&, const RemoteProcess& process) {
                             record("copy", process.pid);
                         });
        QObject::connect(&block, &RemoteHealthBlock::processQuitWanted,
                         [this](const RemoteHealth&, const RemoteProcess& process) {
                             record("quit", process.pid);
                         });
        QObject::connect(&block, &RemoteHealthBlock::appCopyWanted,
                         [this](const RemoteHealth&, const RemoteAppImpact& app) {
                             asked.push_back("copy " + app.name);
                         });
        QObject::connect(
            &block, &RemoteHealthBlock::neverQuitWanted,
            [this](const RemoteAppImpact& app) { asked.push_back("never quit " + app.name); });
        QObject::connect(&block, &RemoteHealthBlock::operationWanted,
                         [this](const RemoteHealth& of, RemoteOperation operation) {
                             EXPECT_EQ(of, machine);
                             operations.push_back(operation);
                         });
    }

    void record(const std::string& what, std::int64_t pid) {
        asked.push_back(what + ' ' + std::to_string(pid));
    }
    void show() {
        block.show(facts);
        settle();
    }
    void showOpen() {
        facts.showsDetails = true;
        show();
    }
    std::vector<std::string> taken() { return std::exchange(asked, {}); }
    bool hasDetails() { return block.findChild<QLineEdit*>() != nullptr; }
    QPushButton& button(const char* identifier) {
        return *block.findChild<QPushButton*>(QString::fromLatin1(identifier));
    }
    std::vector<std::string> shownButtons() {
        std::vector<std::string> titles;
        for (const auto& tool : remote_health_lines::tools()) {
            const auto* each =
                visible<QPushButton>((std::string("probe.") + tool.identifier).c_str());
            if (each != nullptr) {
                titles.push_back(each->text().toStdString());
            }
        }
        return titles;
    }
    /// A control behind the block, at which `tabOrder` ends.
    void addNext() {
        auto* next = new QPushButton(u"Next"_s, &page);
        next->setObjectName(u"next"_s);
        page.layout()->addWidget(next);
    }
    /// From the head on, which is left out.
    std::vector<std::string> tabOrder() {
        visible("probe.head")->setFocus();
        std::vector<std::string> order;
        while (order.size() < 20 && (order.empty() || order.back() != "next")) {
            press(Qt::Key_Tab);
            order.push_back(QApplication::focusWidget()->objectName().toStdString());
        }
        return order;
    }
    QMenu& menu() { return block.findChild<MenuButton*>()->menu(); }
    std::vector<std::string> menuEntries() {
        std::vector<std::string> titles;
        for (const QAction* each : menu().actions()) {
            if (each->isVisible()) {
                titles.push_back(each->text().toStdString());
            }
        }
        return titles;
    }

    RemoteHealthFacts facts = reachableMachine();
    RemoteHealth& machine = facts.machine;
    std::vector<std::string> asked;
    std::vector<RemoteOperation> operations;
    RemoteHealthBlock& block = place(new RemoteHealthBlock(u"probe"_s));
};

}  // namespace tallowcrest
