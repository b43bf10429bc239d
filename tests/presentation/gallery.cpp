// Shows all shared widgets with sample values, to inspect how they look:
//   tallowcrest_gallery [--dark] [--icons] [--width N] [--save FILE] [--time]
//   tallowcrest_gallery --overview STATE [--dark] [--width N] [--height N] [--save FILE]
//   tallowcrest_gallery --remote STATE [the same]
//   tallowcrest_gallery --chat STATE [the same]
//   tallowcrest_gallery --disk STATE [the same]
// --save writes a picture and ends; --time measures the painting of the graph and of Remote Macs
// and the opening of Chat, and ends. The states of the overview are healthy, troubled, waiting and
// collapsed; those of Remote Macs are unscanned, alone, scanned, scanning, canceled, later and
// fleet; those of Chat are welcome, asked, thinking, long, cleared and suggestions; those of
// the disk are in disk_gallery.h. A height of 0 shows the whole page.

#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>

#include <QApplication>
#include <QCommandLineParser>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QStyleFactory>
#include <QTime>
#include <QVBoxLayout>

#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/gauge_card.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/summary_card.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/chat_gallery.h"
#include "tests/presentation/disk_gallery.h"
#include "tests/presentation/icon_names.h"
#include "tests/presentation/overview_gallery.h"
#include "tests/presentation/remote_gallery.h"

using namespace Qt::StringLiterals;

namespace {

using namespace tallowcrest;

std::vector<double> wave(double base, double swing, double phase, int count = 180) {
    std::vector<double> values;
    for (int i = 0; i < count; ++i) {
        const double t = i + phase;
        values.push_back(base + swing * std::sin(t / 19) + swing * 0.5 * std::sin(t / 3.1) +
                         (i % 47 == 0 ? swing : 0));
    }
    return values;
}

std::vector<StableGraphSeries> sampleSeries() {
    return {{u"CPU"_s, &CrestTheme::accent, wave(38, 16, 0), true},
            {u"Memory"_s, &CrestTheme::secondSeries, wave(64, 5, 40), false}};
}

QLayout* pageHeader() {
    auto* texts = new QVBoxLayout;
    texts->setSpacing(spacing::unit / 2);
    texts->addWidget(new ElidedLabel(u"Overview"_s, onPage(&CrestFonts::title)));
    texts->addWidget(new ElidedLabel(u"Health at a glance and the safest next step"_s,
                                     onPage(&CrestFonts::body, &CrestTheme::secondaryText)));
    return texts;
}

QLayout* gauges() {
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::gap);
    auto* cpu = new GaugeCard(u"CPU Load"_s);
    cpu->setValue(42.3, u"42%"_s, u"42.3% normalized across cores"_s);
    auto* memory = new GaugeCard(u"Memory Pressure"_s);
    memory->setValue(78, u"78%"_s, u"12.4 GB used of 15.9 GB"_s);
    auto* disk = new GaugeCard(u"Disk"_s);
    disk->setValue(100, u"100%"_s, QString(10000, u'W'));
    for (GaugeCard* card : {cpu, memory, disk}) {
        row->addWidget(card, 1);
    }
    return row;
}

QString timeText(double seconds, const char* format) {
    return QTime(14, 0).addSecs(static_cast<int>(seconds)).toString(QString::fromLatin1(format));
}

GraphFormats formats() {
    return {[](double percent) { return u"%1%"_s.arg(std::lround(percent)); },
            {[](double seconds, double) { return timeText(seconds, "hh:mm"); },
             [](double seconds, double) { return timeText(seconds, "hh:mm:ss"); }}};
}

/// A point every four seconds, and a gap of half an hour.
GraphTimes sampleTimes(double phase = 0) {
    GraphTimes times{{}, {110}};
    for (int i = 0; i < 180; ++i) {
        times.seconds.push_back(phase + 4 * i + (i < 110 ? 0 : 1800));
    }
    return times;
}

QWidget* timeline() {
    auto* card = new Card;
    card->setHeader(u"waveform.path.ecg"_s, u"Live Performance Timeline"_s);
    card->setCaption(u"Current session · last 716 seconds · updates every 4 seconds"_s);
    auto* graph = new StableLineGraph(formats());
    graph->setSeries(sampleSeries(), sampleTimes());
    graph->setWarningThreshold(80);
    graph->setEventFractions({0.2, 0.63}, {{u"Warning"_s, u"CPU is at 91%"_s, 140},
                                           {u"Action"_s, u"Selected firefox-esr"_s, 2250}});
    graph->setMinimumHeight(220);
    card->contentLayout()->addWidget(graph);
    return card;
}

QWidget* bars(bool empty) {
    auto* card = new Card;
    card->setHeader(u"chart.bar.xaxis"_s, u"Top App Memory"_s);
    card->setCaption(u"Largest app groups by resident memory right now"_s);
    auto* list = new BarList(u"Resident memory by app group"_s, 6, u"000.0 GB"_s);
    list->setEmptyText(u"Collecting app impact samples…"_s);
    if (!empty) {
        list->setRows(
            {{u"firefox-esr"_s, u"4.2 GB"_s, 1},
             {u"code"_s, u"2.9 GB"_s, 0.69},
             {u"A very long process name that does not fit here at all"_s, u"1.1 GB"_s, 0.26},
             {u"gnome-shell"_s, u"0.6 GB"_s, 0.14},
             {u"Xorg"_s, u"0.1 GB"_s, 0.01}});
    }
    card->contentLayout()->addWidget(list);
    card->contentLayout()->addStretch(1);
    return card;
}

QLayout* summaries() {
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::gap);
    const auto add = [row](SummaryCard* card, const QString& value, const QString& detail) {
        card->setValue(value);
        card->setDetail(detail);
        row->addWidget(card, 1);
    };
    add(new SummaryCard(u"Events"_s), u"3 warnings"_s,
        u"12 logged actions. Use Export for a full diagnostics file."_s);
    add(new SummaryCard(u"Recurring Top App"_s), u"firefox-esr"_s,
        u"Most visible app group in this Tallowcrest session."_s);
    add(new SummaryCard(u"Never Quit"_s), u"8 apps"_s,
        u"No custom app groups are protected yet."_s);
    add(new MetricCard(u"Disk Free"_s), u"12.4 GB"_s, u"Storage analysis recommended."_s);
    return row;
}

QWidget* states() {
    auto* card = new Card;
    card->setHeader(u"clock"_s, u"Recent Activity"_s);
    const std::pair<const char*, std::pair<const char*, QColor CrestTheme::*>> rows[] = {
        {"exclamationmark.triangle.fill", {"Warning: memory pressure 91%", &CrestTheme::bad}},
        {"exclamationmark.triangle", {"Elevated load for 2 minutes", &CrestTheme::caution}},
        {"checkmark.circle", {"Refresh finished", &CrestTheme::good}},
        {"info.circle", {"Text in the accent's readable variant", &CrestTheme::accentText}},
    };
    for (const auto& [icon, words] : rows) {
        auto* row = new QHBoxLayout;
        row->setSpacing(spacing::unit);
        row->addWidget(new IconView(QString::fromLatin1(icon), words.second, spacing::iconSmall));
        row->addWidget(new ElidedLabel(QString::fromLatin1(words.first),
                                       onCard(&CrestFonts::body, words.second)),
                       1);
        card->contentLayout()->addLayout(row);
    }
    card->contentLayout()->addStretch(1);
    return card;
}

QWidget* icons() {
    auto* page = new QWidget;
    auto* layout = new QGridLayout(page);
    layout->setSpacing(spacing::unit);
    int place = 0;
    const auto put = [&](const QString& name, const QList<QPixmap>& pixmaps) {
        auto* row = new QHBoxLayout;
        row->setSpacing(spacing::unit);
        for (const QPixmap& pixmap : pixmaps) {
            auto* label = new QLabel;
            label->setPixmap(pixmap);
            row->addWidget(label);
        }
        row->addWidget(
            new ElidedLabel(name, onPage(&CrestFonts::caption, &CrestTheme::secondaryText)), 1);
        layout->addLayout(row, place / 4, place % 4);
        ++place;
    };
    const QColor color = CrestTheme::current().text;
    for (const QString& name : iconNames()) {
        put(name, {tintedIcon(name, color, 16, 1), tintedIcon(name, color, 20, 1),
                   tintedIcon(name, color, 40, 1)});
    }
    for (const double percent : {0.0, 33.0, 67.0, 100.0}) {
        put(u"tray %1"_s.arg(percent),
            {gaugeIcon(percent, color, 16), gaugeIcon(percent, color, 22),
             gaugeIcon(percent, color, 40)});
    }
    const QIcon application = applicationIcon();
    put(u"application"_s, {application.pixmap(16), application.pixmap(32), application.pixmap(48),
                           application.pixmap(128)});
    return page;
}

QWidget* pieces() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(spacing::pagePadding, spacing::pagePadding, spacing::pagePadding,
                               spacing::pagePadding);
    layout->setSpacing(spacing::gap);
    layout->addLayout(pageHeader());
    layout->addLayout(gauges());
    layout->addWidget(timeline());
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::gap);
    row->addWidget(bars(false), 3);
    row->addWidget(bars(true), 2);
    row->addWidget(states(), 2);
    layout->addLayout(row);
    layout->addLayout(summaries());
    return page;
}

/// Prints the processor time of one painting. Wall time would include the other work of the
/// machine.
void measureGraph() {
    StableLineGraph graph(formats());
    graph.resize(900, 220);
    graph.setWarningThreshold(80);
    graph.setEventFractions({0.2, 0.63});
    QImage image(900, 220, QImage::Format_ARGB32_Premultiplied);
    std::vector<std::vector<StableGraphSeries>> frames;
    for (int i = 0; i < 500; ++i) {
        frames.push_back({{u"CPU"_s, &CrestTheme::accent, wave(38, 16, i), true},
                          {u"Memory"_s, &CrestTheme::secondSeries, wave(64, 5, i), false}});
    }
    const std::clock_t begin = std::clock();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        graph.setSeries(std::move(frames[i]), sampleTimes(4.0 * static_cast<double>(i)));
        graph.render(&image);
    }
    const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    std::printf("graph 900x220, 2 x 180 points: %.3f ms of processor time per new frame\n",
                seconds * 1000 / static_cast<double>(frames.size()));
}

/// Shows a window, or writes its picture to `file` unless that is empty.
int showWindow(const std::unique_ptr<QWidget>& window, const QString& file) {
    if (window == nullptr) {
        std::fprintf(stderr, "There is no state of that page of that name.\n");
        return 2;
    }
    if (file.isEmpty()) {
        return QApplication::exec();
    }
    QApplication::processEvents();
    // A question is a window of its own.
    QWidget* const dialog = QApplication::activeModalWidget();
    return (dialog == nullptr ? window.get() : dialog)->grab().save(file) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption dark(u"dark"_s, u"Use a dark palette."_s);
    const QCommandLineOption showIcons(u"icons"_s, u"Show the icons."_s);
    const QCommandLineOption width(u"width"_s, u"Width of the page."_s, u"pixels"_s, u"1040"_s);
    const QCommandLineOption save(u"save"_s, u"Write a picture."_s, u"file"_s);
    const QCommandLineOption time(u"time"_s, u"Measure the graph."_s);
    const QCommandLineOption overview(u"overview"_s, u"Show the overview in a state."_s,
                                      u"state"_s);
    const QCommandLineOption remote(u"remote"_s, u"Show Remote Macs in a state."_s, u"state"_s);
    const QCommandLineOption chat(u"chat"_s, u"Show Chat in a state."_s, u"state"_s);
    const QCommandLineOption disk(u"disk"_s, u"Show the disk's care in a state."_s, u"state"_s);
    const QCommandLineOption height(u"height"_s, u"Height of the window."_s, u"pixels"_s, u"700"_s);
    parser.addOptions({dark, showIcons, width, save, time, overview, remote, chat, disk, height});
    parser.process(application);

    QApplication::setPalette(paletteFor(parser.isSet(dark) ? Appearance::dark : Appearance::light));
    QApplication::setWindowIcon(applicationIcon());
    if (parser.isSet(time)) {
        measureGraph();
        measureRemotePage();
        measureChatPage();
        return 0;
    }
    const int wanted = parser.value(width).toInt();
    const QSize size(wanted, parser.value(height).toInt());
    if (parser.isSet(overview)) {
        return showWindow(overviewGallery(parser.value(overview), size), parser.value(save));
    }
    if (parser.isSet(remote)) {
        return showWindow(remoteGallery(parser.value(remote), size), parser.value(save));
    }
    if (parser.isSet(chat)) {
        return showWindow(chatGallery(parser.value(chat), size), parser.value(save));
    }
    if (parser.isSet(disk)) {
        return showWindow(diskGallery(parser.value(disk), size), parser.value(save));
    }
    std::unique_ptr<QWidget> page(parser.isSet(showIcons) ? icons() : pieces());
    const int hint = page->layout()->hasHeightForWidth() ? page->layout()->heightForWidth(wanted)
                                                         : page->sizeHint().height();
    page->resize(wanted, hint);
    if (parser.isSet(save)) {
        page->ensurePolished();
        return page->grab().save(parser.value(save)) ? 0 : 1;
    }
    page->show();
    return QApplication::exec();
}
