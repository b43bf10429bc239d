#include "tests/presentation/shell/rig.h"

#include <algorithm>
#include <set>
#include <type_traits>
#include <variant>

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSlider>
#include <QToolButton>

#include "core/settings/settings_owner.h"
#include "tests/presentation/shell/operations.h"
#include "tests/presentation/shown_texts.h"

namespace tallowcrest {

using dashboard_text::text;

namespace {

QString described(const SettingsValue& value) {
    return std::visit(
        [](const auto& each) -> QString {
            using Value = std::decay_t<decltype(each)>;
            if constexpr (std::is_arithmetic_v<Value>) {
                return QString::number(each);
            } else if constexpr (std::is_same_v<Value, SettingsTextList>) {
                QStringList texts;
                for (const std::string& entry : each) {
                    texts.append(text(entry));
                }
                return texts.join(u'|');
            } else if constexpr (std::is_same_v<Value, std::string>) {
                return text(each);
            } else {
                return u"(a list)"_s;
            }
        },
        value);
}

/// Inside of a text field: its icon, and the button that clears it.
bool isPartOfField(const QAccessibleInterface& spoken) {
    return qobject_cast<const QToolButton*>(spoken.object()) != nullptr;
}

/// Qt's cells offer to toggle their selection, which only those that say "Review" have.
bool isCellWithoutControl(QAccessibleInterface& spoken) {
    return spoken.role() == QAccessible::Cell &&
           spoken.tableCellInterface()->columnIndex() != ProcessTableModel::actionColumn;
}

}  // namespace

void Rig::fillDisk() {
    constexpr std::int64_t megabyte = 1048576;
    machine.clock.advance(std::chrono::hours(24 * 60));
    machine.metrics->disk = {200.0, 50.0};
    disk.files.add("/home/owner/.cache/app/a", megabyte);
    disk.files.add("/home/owner/.cache/app/b", megabyte);
    disk.files.add("/home/owner/Downloads/old.iso", 300 * megabyte);
    disk.areas = {{"Temporary", "/tmp"}};
    machine.disk = disk.ports();
    machine.toolLauncher.onLaunch = [this](const ToolRequest& request) {
        if (request.path == "/usr/bin/du") {
            machine.toolLauncher.willWrite("7\t/tmp\n");
        } else if (request.path == "/usr/bin/rsync") {
            for (const char* name : {"tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"}) {
                files->files[std::string("/home/owner/.local/opt/tallowcrest/") + name] = "";
            }
        }
    };
}

void Rig::makeInstallable() {
    const LinuxInstallPlaces places{.home = "/home/owner",
                                    .data = "/home/owner/.local/share",
                                    .configuration = "/home/owner/.config",
                                    .program = "/unpacked"};
    for (const char* name : {"/usr/bin/rsync", "/unpacked/tallowcrest",
                             "/unpacked/tallowcrest-desktop", "/unpacked/tallowcrest-http.so"}) {
        files->files[name] = "";
    }
    machine.install = {files, linuxInstallPlan(places), linuxLoginPlan(places), {}};
}

void Rig::finishWork() {
    settle();
    while (machine.workQueue.pendingCount() > 0) {
        machine.finishSamples();
    }
    settle();
}

std::string Rig::facts() {
    if (finishesWork_) {
        machine.finishSamples();
    }
    settle();
    SystemMonitor& monitor = machine.monitor();
    QStringList facts = outside_;
    facts.append(QString::number(machine.store.written.size()));
    for (const std::string& key :
         std::set(machine.store.written.begin(), machine.store.written.end())) {
        facts.append(text(key) + u" = "_s + described(*machine.store.read(key)));
    }
    for (const ActivityEvent& event : monitor.log().activityLog()) {
        facts.append(u"logged "_s + text(event.title) + u": "_s + text(event.detail));
    }
    facts.append(text(monitor.log().lastAction()));
    if (const auto& pending = monitor.confirmations().pendingConfirmation()) {
        facts.append(u"asked "_s + text(pending->title));
    }
    const Navigation& navigation = window().state().navigation;
    facts.append(text(rawValue(navigation.selectedRoute())));
    facts.append(text(navigation.processFilter()));
    facts.append(QString::number(actions().review.selectedPID().value_or(0)));
    for (const auto& [name, content] : machine.reportFolder->written) {
        facts.append(u"wrote "_s + text(name));
    }
    facts.append(QString::number(machine.actions.cachePurge->count));
    for (const std::string& revealed : disk.revealed) {
        facts.append(u"revealed "_s + text(revealed));
    }
    for (const std::string& asked : disk.chooserTexts) {
        facts.append(u"asked for a folder: "_s + text(asked));
    }
    for (const std::string& change : files->changes) {
        facts.append(text(change));
    }
    for (const std::string& opened : updates.opened) {
        facts.append(u"opened "_s + text(opened));
    }
    for (const FoundFile& file : disk.files.all) {
        facts.append(u"on disk "_s + text(file.path));
    }
    QWidgetList windows = QApplication::topLevelWidgets();
    std::ranges::sort(windows, {}, &QWidget::objectName);
    for (const QWidget* each : windows) {
        if (each->isVisible()) {
            facts.append(u"shows "_s + each->objectName());
            addShown(*each, facts);
        }
    }
    return facts.join(u'\n').toStdString();
}

void Rig::addShown(const QWidget& within, QStringList& facts) {
    QStringList shown;
    for (const std::string& line : shownTexts(within)) {
        shown.append(text(line));
    }
    for (const auto* button : within.findChildren<QAbstractButton*>()) {
        if (button->isVisible()) {
            shown.append(button->objectName() + u' ' + button->text() +
                         (button->isChecked() ? u" checked"_s : QString()));
        }
    }
    for (const auto* slider : within.findChildren<QSlider*>()) {
        shown.append(slider->objectName() + u' ' + QString::number(slider->value()));
    }
    for (const auto* field : within.findChildren<QLineEdit*>()) {
        shown.append(field->objectName() + u' ' + field->text());
    }
    for (const auto* field : within.findChildren<QPlainTextEdit*>()) {
        shown.append(field->objectName() + u' ' + field->toPlainText());
    }
    // Not in their places: a click scrolls its control into view.
    shown.sort();
    facts += shown;
}

std::vector<QAccessibleInterface*> Rig::controls() {
    for (QTimer* timer : window().findChildren<QTimer*>(u"settling"_s)) {
        timer->setInterval(0);
    }
    settle();
    std::vector<QAccessibleInterface*> found;
    collect(*QAccessible::queryAccessibleInterface(&walked()), found);
    return found;
}

void Rig::collect(QAccessibleInterface& from, std::vector<QAccessibleInterface*>& found) {
    for (int i = 0; i < from.childCount(); ++i) {
        QAccessibleInterface* child = from.child(i);
        if (child == nullptr || child->state().invisible || child->role() == QAccessible::MenuBar) {
            continue;
        }
        if (!child->state().disabled && !isPartOfField(*child) && !isCellWithoutControl(*child) &&
            !operationsOf(*child).empty()) {
            found.push_back(child);
        }
        collect(*child, found);
    }
}

}  // namespace tallowcrest
