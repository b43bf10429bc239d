#include "tests/presentation/disk_gallery.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>

#include <QApplication>
#include <QScrollArea>
#include <QVBoxLayout>

#include "core/confirmation_desk.h"
#include "disk/disk.h"
#include "monitor/system_monitor.h"
#include "platform/desktop/qt_locale.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/widgets/crest_style.h"
#include "tests/support/fake_disk_ports.h"
#include "tests/support/fake_machine.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr std::int64_t megabyte = 1048576;

/// Owns the machine that its window shows.
class DiskGallery final : public QWidget {
public:
    /// How a state comes about, and the page that shows it.
    struct State {
        AppRoute route;
        std::function<void(DiskGallery&)> bring;
    };
    static const std::map<QString, State>& states();

    DiskGallery(const State& shown, const QSize& size) {
        machine_.locale = std::make_shared<QtLocale>(localeNamesOfThisProcess());
        machine_.metrics->memory = {16.0, 9.5, 6.5, 2.3, 0.4, 59.4};
        machine_.metrics->disk = {476.9, 12.4};
        machine_.addProcess(800, "/usr/bin/photo-indexer", 130.0, 2048.0);
        fillDisk();
        machine_.disk = disk_.ports();
        window_ = std::make_unique<DashboardWindow>(machine_.monitor());
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(window_.get());
        resize(size.expandedTo({1, 480}));
        show();
        window_->show();
        settle();
        window_->state().navigation.setSelectedRoute(shown.route);
        shown.bring(*this);
        for (int turn = 0; turn < 50; ++turn) {
            machine_.mainQueue.drain();
            QApplication::processEvents();
        }
        if (size.height() == 0) {
            for (const QScrollArea* area : findChildren<QScrollArea*>()) {
                if (area->isVisible()) {
                    const QWidget* page = area->widget();
                    resize(size.width(),
                           height() - page->parentWidget()->height() + page->height());
                    break;
                }
            }
        }
    }

private:
    void fillDisk() {
        machine_.clock.advance(std::chrono::hours(24 * 60));
        for (int i = 0; i < 40; ++i) {
            disk_.files.add("/home/owner/.cache/browser/profile/entries/0f4c" + std::to_string(i),
                            3 * megabyte);
        }
        disk_.files.add("/home/owner/Downloads/debian-12.7.0-amd64-DVD-1.iso", 3800 * megabyte);
        disk_.files.add("/home/owner/Documents/Lectures/" + std::string(200, 'a') + ".mkv",
                        2100 * megabyte);
        disk_.files.add("/home/owner/Documents/of \xff\xfe/caf\xe9.ISO", 900 * megabyte);
        disk_.files.add("/home/owner/Documents/\u0645\u062d\u0627\u0636\u0631\u0629 1.mp4",
                        700 * megabyte);
        disk_.files.add("/home/owner/Downloads/old\n<b>\u202egpj.zip", 240 * megabyte);
        const char* const names[] = {"Programs", "Downloads", "Documents", "Videos", "Trash"};
        std::int64_t kilobytes = 90'000'000;
        for (const char* name : names) {
            disk_.areas.push_back({name, "/tmp"});
            sizes_.push_back(kilobytes);
            kilobytes /= 2;
        }
        machine_.toolLauncher.onLaunch = [this](const ToolRequest&) {
            machine_.toolLauncher.willWrite(
                std::to_string(sizes_.at(std::min(next_++, sizes_.size() - 1))) + "\t/tmp\n");
        };
    }

    void settle() {
        machine_.mainQueue.drain();
        while (machine_.workQueue.pendingCount() > 0) {
            machine_.finishSamples();
        }
        QApplication::processEvents();
    }

    Disk& disk() { return machine_.monitor().disk(); }

    void search() {
        disk().storage.scanStorageAreas();
        disk().files.analyzePersonalFiles();
    }
    void searchWhole() {
        search();
        settle();
    }
    void ask() {
        searchWhole();
        disk().autopilot.reviewDiskCleanup();
        settle();
    }
    void confirm() {
        ask();
        machine_.monitor().confirmations().confirmPending();
        machine_.mainQueue.drain();
    }
    void cleanUp() {
        confirm();
        settle();
    }

    FakeDiskPorts disk_;
    FakeMachine machine_;
    std::vector<std::int64_t> sizes_;
    std::size_t next_ = 0;
    std::unique_ptr<DashboardWindow> window_;
};

const std::map<QString, DiskGallery::State>& DiskGallery::states() {
    using G = DiskGallery;
    static const std::map<QString, State> all{
        {u"unscanned"_s, {AppRoute::optimizationSuggestions, [](G&) {}}},
        {u"recommended"_s, {AppRoute::optimizationSuggestions, &G::searchWhole}},
        {u"cleanup"_s, {AppRoute::optimize, &G::searchWhole}},
        {u"overview"_s, {AppRoute::overview, &G::cleanUp}},
        {u"busy"_s,
         {AppRoute::optimizationSuggestions,
          [](G& gallery) {
              gallery.search();
              gallery.disk().autopilot.reviewDiskCleanup();
              gallery.machine_.mainQueue.drain();
          }}},
        {u"stopped"_s,
         {AppRoute::optimizationSuggestions,
          [](G& gallery) {
              gallery.search();
              gallery.disk().storage.stop();
              gallery.disk().files.stopAnalysis();
              gallery.settle();
          }}},
        {u"failed"_s,
         {AppRoute::optimizationSuggestions,
          [](G& gallery) {
              gallery.disk_.files.all.clear();
              gallery.machine_.toolLauncher.onLaunch = {};
              gallery.searchWhole();
          }}},
        {u"question"_s, {AppRoute::optimize, &G::ask}},
        {u"moving"_s, {AppRoute::optimize, &G::confirm}},
        {u"moved"_s, {AppRoute::optimize, &G::cleanUp}},
        {u"undoing"_s,
         {AppRoute::optimize,
          [](G& gallery) {
              gallery.cleanUp();
              gallery.disk().autopilot.undoLatestCleanup();
              gallery.machine_.mainQueue.drain();
          }}},
        {u"undone"_s,
         {AppRoute::optimize,
          [](G& gallery) {
              gallery.cleanUp();
              gallery.disk_.files.add(gallery.disk_.trash->moved.front(), megabyte);
              gallery.disk().autopilot.undoLatestCleanup();
              gallery.settle();
          }}},
    };
    return all;
}

}  // namespace

std::unique_ptr<QWidget> diskGallery(const QString& state, const QSize& size) {
    const auto found = DiskGallery::states().find(state);
    if (found == DiskGallery::states().end()) {
        return nullptr;
    }
    QApplication::setStyle(new CrestStyle);
    return std::make_unique<DiskGallery>(found->second, size);
}

}  // namespace tallowcrest
