// Shows every shared visual piece with sample values, for looking at them:
//   tallowcrest_gallery [--dark] [--icons] [--width N] [--save FILE] [--time]
//   tallowcrest_gallery --overview STATE [--dark] [--width N] [--height N] [--save FILE]
// --save writes a picture and ends; --time measures the painting of the graph and ends. The states
// of the overview are healthy, troubled, waiting and collapsed; a height of 0 shows all of it.

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
#include <QVBoxLayout>

#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/gauge_card.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/icon_view.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/summary_card.h"
#include "presentation/widgets/theme.h"
#include "tests/presentation/overview_gallery.h"

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
    return {{QStringLiteral("CPU"), &CrestTheme::accent, wave(38, 16, 0), true},
            {QStringLiteral("Memory"), &CrestTheme::secondSeries, wave(64, 5, 40), false}};
}

QLayout* pageHeader() {
    auto* texts = new QVBoxLayout;
    texts->setSpacing(spacing::unit / 2);
    texts->addWidget(
        new ElidedLabel(QStringLiteral("Overview"), &CrestFonts::title, &CrestTheme::text));
    texts->addWidget(new ElidedLabel(QStringLiteral("Health at a glance and the safest next step"),
                                     &CrestFonts::body, &CrestTheme::secondaryText));
    return texts;
}

QLayout* gauges() {
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::gap);
    auto* cpu = new GaugeCard(QStringLiteral("CPU Load"));
    cpu->setValue(42.3);
    cpu->setDetail(QStringLiteral("42.3% normalized across cores"));
    auto* memory = new GaugeCard(QStringLiteral("Memory Pressure"), &CrestTheme::secondSeries);
    memory->setValue(78);
    memory->setDetail(QStringLiteral("12.4 GB used of 15.9 GB"));
    auto* disk = new GaugeCard(QStringLiteral("Disk"), &CrestTheme::bad);
    disk->setValue(100);
    disk->setDetail(QString(10000, u'W'));
    for (GaugeCard* card : {cpu, memory, disk}) {
        row->addWidget(card, 1);
    }
    return row;
}

QWidget* timeline() {
    auto* card = new Card;
    card->setHeader(QStringLiteral("waveform.path.ecg"),
                    QStringLiteral("Live Performance Timeline"));
    card->setCaption(
        QStringLiteral("Current session · last 716 seconds · updates every 4 seconds"));
    auto* graph = new StableLineGraph;
    graph->setSeries(sampleSeries());
    graph->setWarningThreshold(80);
    graph->setEventFractions({0.2, 0.63});
    graph->setMinimumHeight(220);
    card->contentLayout()->addWidget(graph);
    return card;
}

QWidget* bars(bool empty) {
    auto* card = new Card;
    card->setHeader(QStringLiteral("chart.bar.xaxis"), QStringLiteral("Top App Memory"));
    card->setCaption(QStringLiteral("Largest app groups by resident memory right now"));
    auto* list =
        new BarList(QStringLiteral("Resident memory by app group"), 6, QStringLiteral("000.0 GB"));
    list->setEmptyText(QStringLiteral("Collecting app impact samples…"));
    if (!empty) {
        list->setRows({{QStringLiteral("firefox-esr"), QStringLiteral("4.2 GB"), 1},
                       {QStringLiteral("code"), QStringLiteral("2.9 GB"), 0.69},
                       {QStringLiteral("A very long process name that does not fit here at all"),
                        QStringLiteral("1.1 GB"), 0.26},
                       {QStringLiteral("gnome-shell"), QStringLiteral("0.6 GB"), 0.14},
                       {QStringLiteral("Xorg"), QStringLiteral("0.1 GB"), 0.01}});
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
        return card;
    };
    add(new SummaryCard(QStringLiteral("Events")), QStringLiteral("3 warnings"),
        QStringLiteral("12 logged actions. Use Export for a full diagnostics file."));
    add(new SummaryCard(QStringLiteral("Recurring Top App")), QStringLiteral("firefox-esr"),
        QStringLiteral("Most visible app group in this Tallowcrest session."));
    add(new SummaryCard(QStringLiteral("Never Quit")), QStringLiteral("8 apps"),
        QStringLiteral("No custom app groups are protected yet."));
    add(new MetricCard(QStringLiteral("Disk Free")), QStringLiteral("12.4 GB"),
        QStringLiteral("Storage analysis recommended."))
        ->setValueColor(&CrestTheme::caution);
    return row;
}

QWidget* states() {
    auto* card = new Card;
    card->setHeader(QStringLiteral("clock"), QStringLiteral("Recent Activity"));
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
        row->addWidget(
            new ElidedLabel(QString::fromLatin1(words.first), &CrestFonts::body, words.second), 1);
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
        row->addWidget(new ElidedLabel(name, &CrestFonts::caption, &CrestTheme::secondaryText), 1);
        layout->addLayout(row, place / 4, place % 4);
        ++place;
    };
    const QColor color = CrestTheme::current().text;
    for (const QString& name : iconNames()) {
        put(name, {tintedIcon(name, color, 16, 1), tintedIcon(name, color, 20, 1),
                   tintedIcon(name, color, 40, 1)});
    }
    for (const double percent : {0.0, 33.0, 67.0, 100.0}) {
        put(QStringLiteral("tray %1").arg(percent),
            {gaugeIcon(percent, color, 16), gaugeIcon(percent, color, 22),
             gaugeIcon(percent, color, 40)});
    }
    const QIcon application = applicationIcon();
    put(QStringLiteral("application"), {application.pixmap(16), application.pixmap(32),
                                        application.pixmap(48), application.pixmap(128)});
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

/// Prints the processor time of one painting. Wall time would measure the machine's other work as
/// well.
void measureGraph() {
    StableLineGraph graph;
    graph.resize(900, 220);
    graph.setWarningThreshold(80);
    graph.setEventFractions({0.2, 0.63});
    QImage image(900, 220, QImage::Format_ARGB32_Premultiplied);
    std::vector<std::vector<StableGraphSeries>> frames;
    for (int i = 0; i < 500; ++i) {
        frames.push_back(
            {{QStringLiteral("CPU"), &CrestTheme::accent, wave(38, 16, i), true},
             {QStringLiteral("Memory"), &CrestTheme::secondSeries, wave(64, 5, i), false}});
    }
    const std::clock_t begin = std::clock();
    for (auto& frame : frames) {
        graph.setSeries(std::move(frame));
        graph.render(&image);
    }
    const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    std::printf("graph 900x220, 2 x 180 points: %.3f ms of processor time per new frame\n",
                seconds * 1000 / static_cast<double>(frames.size()));
}

/// Shows the overview, or writes its picture to `file` unless that is empty.
int showOverview(const QString& state, const QSize& size, const QString& file) {
    const std::unique_ptr<QWidget> window = overviewGallery(state, size);
    if (window == nullptr) {
        std::fprintf(stderr, "There is no state of the overview of that name.\n");
        return 2;
    }
    if (file.isEmpty()) {
        return QApplication::exec();
    }
    QApplication::processEvents();
    return window->grab().save(file) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption dark(QStringLiteral("dark"), QStringLiteral("Use a dark palette."));
    const QCommandLineOption showIcons(QStringLiteral("icons"), QStringLiteral("Show the icons."));
    const QCommandLineOption width(QStringLiteral("width"), QStringLiteral("Width of the page."),
                                   QStringLiteral("pixels"), QStringLiteral("1040"));
    const QCommandLineOption save(QStringLiteral("save"), QStringLiteral("Write a picture."),
                                  QStringLiteral("file"));
    const QCommandLineOption time(QStringLiteral("time"), QStringLiteral("Measure the graph."));
    const QCommandLineOption overview(QStringLiteral("overview"),
                                      QStringLiteral("Show the overview in a state."),
                                      QStringLiteral("state"));
    const QCommandLineOption height(QStringLiteral("height"),
                                    QStringLiteral("Height of the overview's window."),
                                    QStringLiteral("pixels"), QStringLiteral("700"));
    parser.addOptions({dark, showIcons, width, save, time, overview, height});
    parser.process(application);

    QApplication::setPalette(paletteFor(parser.isSet(dark) ? Appearance::dark : Appearance::light));
    QApplication::setWindowIcon(applicationIcon());
    if (parser.isSet(time)) {
        measureGraph();
        return 0;
    }
    const int wanted = parser.value(width).toInt();
    if (parser.isSet(overview)) {
        return showOverview(parser.value(overview), {wanted, parser.value(height).toInt()},
                            parser.value(save));
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
