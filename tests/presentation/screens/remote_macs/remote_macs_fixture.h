#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "presentation/screens/remote_macs/peer_list_model.h"
#include "presentation/screens/remote_macs/remote_health_block.h"
#include "remote/remote.h"
#include "tests/presentation/remote_fleet.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// The window on Remote Macs over machines that a test sets.
class RemoteMacsFixture : public WindowFixture {
protected:
    RemoteMacsFixture() {
        machine.storeOnPasteboard = [this](const std::string& text) { copied.push_back(text); };
    }

    void showPage(std::size_t peers = 6) {
        window().resize(1200, 800);
        showWithSample();
        machine.setTailDevices(fleetPeers(peers));
        goTo(AppRoute::remoteMacs);
    }

    Remote& remote() { return machine.monitor().remote(); }

    void finishScan(std::vector<RemoteHealth> machines) {
        remote().scan.finishRemoteScan(std::move(machines));
        settle();
    }
    void finishScan(std::size_t machines, std::size_t troubled) {
        finishScan(fleetHealth(machines, troubled, machine.clock.now()));
    }

    std::vector<RemoteHealthBlock*> blocks() {
        std::vector<RemoteHealthBlock*> found;
        for (auto* each : window().findChildren<RemoteHealthBlock*>()) {
            if (each->isVisible()) {
                found.push_back(each);
            }
        }
        std::ranges::sort(found, {}, [](const auto* each) { return each->y(); });
        return found;
    }
    std::vector<std::string> blockNames() {
        std::vector<std::string> names;
        for (const auto* each : blocks()) {
            names.push_back(each->accessibleName().toStdString());
        }
        return names;
    }

    PeerListModel& peers() { return *window().findChild<PeerListModel*>(); }

    int placeInView(const char* identifier) {
        const QWidget& part = *visible(identifier);
        return part.mapTo(scrollAreaAround(part).viewport(), QPoint()).y();
    }

    std::vector<std::string> copied;
};

}  // namespace tallowcrest
