#include "tests/presentation/overview_gallery.h"

#include <cmath>

#include <QApplication>
#include <QScrollArea>
#include <QVBoxLayout>

#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "monitor/system_monitor.h"
#include "platform/desktop/qt_locale.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/widgets/crest_style.h"
#include "tests/support/fake_machine.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;

/// Texts of every length that a sample can produce.
std::vector<Recommendation> troubledRecommendations() {
    return {
        {UUID::random(), "CPU has stayed high for about a minute",
         "This looks sustained rather than a brief spike. Check App Impact first, then quit or "
         "restart the top app if the Mac feels sluggish.",
         Severity::caution, 800},
        {UUID::random(), "Memory pressure is high",
         "Review the biggest memory users before purging caches. Quitting one heavy app usually "
         "helps more than forcing cache cleanup.",
         Severity::urgent, 700},
        {UUID::random(), "photo-indexer is using 5.9 GB",
         "Select it in Heavy Processes if you want Tallowcrest to ask it to quit.",
         Severity::urgent, 800},
        {UUID::random(), "Chrome has 12 helper processes",
         "Browser tabs and extensions are often the fastest win. Close unused windows or "
         "restart the browser if memory keeps climbing.",
         Severity::caution, 703},
        {UUID::random(), "Docker is holding 1.9 GB",
         "If you are not developing right now, quitting Docker Desktop can free a meaningful "
         "chunk of memory.",
         Severity::caution, 999999}};
}

std::vector<SessionInsight> insights(bool isTroubled) {
    std::vector<SessionInsight> found{
        {UUID::random(), "Peak CPU", isTroubled ? "97%" : "34%",
         "Average 22% across this session."},
        {UUID::random(), "Peak Memory", isTroubled ? "91%" : "52%",
         "Average 48% pressure across this session."},
        {UUID::random(), "Recurring Top App", "photo-indexer",
         "Led App Impact for about 236s of sampled time.", SessionInsight::Kind::topApp}};
    if (isTroubled) {
        found.push_back({UUID::random(), "Remote Watch", "build-server.example",
                         "Highest scanned remote memory pressure: 88%."});
        found.push_back(
            {UUID::random(), "Remote Repeater", "postgres", "Led a remote scan 3 times."});
    }
    return found;
}

/// Owns the machine that its window shows.
class OverviewGallery final : public QWidget {
public:
    OverviewGallery(const QString& state, const QSize& size) {
        machine_.locale = std::make_shared<QtLocale>(localeNamesOfThisProcess());
        const bool isTroubled = state == u"troubled"_s;
        MemorySnapshot& memory = machine_.metrics->memory;
        memory = {16.0, isTroubled ? 14.9 : 7.4, isTroubled ? 1.1 : 8.6,
                  2.3,  isTroubled ? 2.8 : 0.4,  isTroubled ? 91.2 : 46.3};
        machine_.metrics->disk = {476.9, isTroubled ? 12.4 : 203.8};
        static const char* const names[] = {"chrome", "editor",   "mail",  "music",   "terminal",
                                            "chat",   "calendar", "files", "indexer", "compositor"};
        std::int64_t pid = 700;
        for (const char* name : names) {
            machine_.addProcess(pid, std::string("/usr/bin/") + name, isTroubled ? 9.0 : 2.0,
                                static_cast<double>(2400 - 3 * (pid - 690) * (pid - 690)));
            ++pid;
        }
        machine_.addProcess(800, "/usr/bin/photo-indexer", isTroubled ? 290.0 : 30.0, 1980.0);
        machine_.recommendations =
            isTroubled ? troubledRecommendations()
                       : std::vector<Recommendation>{
                             {UUID::random(), "This Mac looks healthy",
                              "CPU and memory pressure are in a comfortable range. No "
                              "optimization action is needed right now.",
                              Severity::info, std::nullopt}};
        machine_.sessionInsights = insights(isTroubled);
        window_ = std::make_unique<DashboardWindow>(machine_.monitor());
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(window_.get());
        resize(size.expandedTo({1, 480}));
        show();
        window_->show();
        if (state != u"waiting"_s) {
            takeSamples();
        }
        if (isTroubled) {
            machine_.monitor().log().recordEvent(ActivityKind::warning,
                                                 "CPU 96% and memory 91% crossed 82%.");
            machine_.monitor().log().recordEvent(
                ActivityKind::autoSelect,
                "Selected photo-indexer because system load crossed 82%.");
            machine_.monitor().log().recordMessage(
                "Selected photo-indexer, currently the heaviest process.");
        }
        if (state == u"collapsed"_s) {
            window_->state().sections.collapseAll();
        }
        machine_.mainQueue.drain();
        if (size.height() == 0) {
            QApplication::processEvents();
            const QWidget* page = findChild<QScrollArea*>()->widget();
            resize(size.width(), height() - page->parentWidget()->height() + page->height());
        }
    }

private:
    void takeSamples() {
        machine_.finishSamples();
        const double pressure = machine_.metrics->memory.pressure;
        const double cpu = machine_.metrics->processes.back().cpu;
        for (int i = 0; i < 120; ++i) {
            machine_.metrics->memory.pressure = pressure - 8.0 + 7.0 * std::sin(i / 17.0);
            machine_.metrics->processes.back().cpu = cpu * (0.7 + 0.3 * std::sin(i / 5.0));
            machine_.tick();
        }
        machine_.metrics->memory.pressure = pressure;
        machine_.metrics->processes.back().cpu = cpu;
        machine_.tick();
    }

    FakeMachine machine_;
    std::unique_ptr<DashboardWindow> window_;
};

}  // namespace

std::unique_ptr<QWidget> overviewGallery(const QString& state, const QSize& size) {
    const QStringList states{u"healthy"_s, u"troubled"_s, u"waiting"_s, u"collapsed"_s};
    if (!states.contains(state)) {
        return nullptr;
    }
    QApplication::setStyle(new CrestStyle);
    return std::make_unique<OverviewGallery>(state, size);
}

}  // namespace tallowcrest
