#include "tests/presentation/remote_gallery.h"

#include <chrono>
#include <cstdio>
#include <ctime>

#include <QApplication>
#include <QPixmap>
#include <QScrollArea>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "platform/desktop/qt_locale.h"
#include "presentation/screens/shared/screen.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/widgets/crest_style.h"
#include "remote/remote.h"
#include "tests/presentation/remote_fleet.h"
#include "tests/support/fake_machine.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// Owns the machine that its window shows.
class RemoteGallery final : public QWidget {
public:
    RemoteGallery(const QString& state, const QSize& size) {
        machine_.locale = std::make_shared<QtLocale>(localeNamesOfThisProcess());
        machine_.metrics->memory = {16.0, 7.4, 8.6, 2.3, 0.4, 46.3};
        window_ = std::make_unique<DashboardWindow>(machine_.monitor());
        window_->state().navigation.setSelectedRoute(AppRoute::remoteMacs);
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(window_.get());
        resize(size.expandedTo({1, 480}));
        show();
        window_->show();
        machine_.finishSamples();
        setState(state);
        machine_.mainQueue.drain();
        QApplication::processEvents();
        if (size.height() == 0) {
            const QWidget* page = screen().findChild<QScrollArea*>()->widget();
            resize(size.width(), height() - page->parentWidget()->height() + page->height());
        }
    }

    Screen& screen() {
        for (Screen* each : window_->findChildren<Screen*>()) {
            if (each->isVisible()) {
                return *each;
            }
        }
        throw std::logic_error("no page shows");
    }

private:
    void setState(const QString& state) {
        Remote& remote = machine_.monitor().remote();
        if (state == u"alone"_s) {
            remote.tailnet.publish({{}, {"Tailscale is stopped.", "No DNS server answers."}});
            return;
        }
        machine_.setTailDevices(fleetPeers(state == u"fleet"_s ? 2000 : 15));
        if (state == u"unscanned"_s) {
            return;
        }
        scan(state == u"fleet"_s ? 40 : 12);
        if (state == u"later"_s) {
            letTimePass();
        }
        if (state == u"canceled"_s) {
            machine_.toolLauncher.onLaunch = [this, &remote](const ToolRequest&) {
                if (++asked_ == 3) {
                    remote.scan.cancelScan();
                }
            };
            remote.scan.scanRemoteMacs();
            machine_.finishSamples();
        }
        if (state == u"scanning"_s) {
            // The scan stays at the third machine: it goes on after the picture.
            machine_.toolLauncher.onLaunch = [this](const ToolRequest&) {
                if (++asked_ == 3) {
                    machine_.mainQueue.drain();
                    throw Paused();
                }
            };
            remote.scan.scanRemoteMacs();
            try {
                machine_.workQueue.runAll();
            } catch (const Paused&) {
            }
        }
    }

    /// Two machines have gone offline since the scan, one was acted on and one renamed.
    void letTimePass() {
        Remote& remote = machine_.monitor().remote();
        std::vector<TailDevice> peers = fleetPeers(15);
        peers[0].online = peers[1].online = false;
        remote.tailnet.publish({peers,
                                {"Tailscale can't reach the configured DNS servers.", "No route.",
                                 "Three.", "Four.", "Five.", "Six.", "Seven."}});
        remote.profiles.updateRemoteProfile("mac-3", {.nickname = "Render box"});
        for (std::size_t i : {1U, 2U}) {
            remote.actions.remoteOptimizeSafely(remote.scan.state().remoteHealth.at(i));
        }
        machine_.clock.advance(std::chrono::seconds(150));
    }

    struct Paused {};

    void scan(std::size_t machines) {
        RemoteScan& scan = machine_.monitor().remote().scan;
        for (int i = 0; i < 12; ++i) {
            machine_.clock.advance(std::chrono::minutes(15));
            scan.finishRemoteScan(fleetHealth(machines, 3, machine_.clock.now()));
        }
        machine_.clock.advance(std::chrono::seconds(150));
    }

    FakeMachine machine_;
    std::unique_ptr<DashboardWindow> window_;
    int asked_ = 0;
};

}  // namespace

std::unique_ptr<QWidget> remoteGallery(const QString& state, const QSize& size) {
    const QStringList states{u"unscanned"_s, u"alone"_s, u"scanned"_s, u"scanning"_s,
                             u"canceled"_s,  u"later"_s, u"fleet"_s};
    if (!states.contains(state)) {
        return nullptr;
    }
    QApplication::setStyle(new CrestStyle);
    return std::make_unique<RemoteGallery>(state, size);
}

void measureRemotePage() {
    QApplication::setStyle(new CrestStyle);
    RemoteGallery gallery(u"fleet"_s, {1200, 800});
    Screen& page = gallery.screen();
    constexpr int repeats = 200;
    const auto measure = [](const char* what, const auto& step) {
        const std::clock_t begin = std::clock();
        for (int i = 0; i < repeats; ++i) {
            step();
        }
        const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        std::printf("%s: %.3f ms of processor time\n", what, seconds * 1000 / repeats);
    };
    QPixmap picture(page.size());
    measure("refresh of 40 machines and 2,000 peers without a change", [&] { page.refresh(); });
    measure("painting of all that is in view", [&] { page.render(&picture); });
}

}  // namespace tallowcrest
