#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <QPointer>
#include <QString>
#include <QWidget>

class QAccessibleEvent;

namespace tallowcrest {

/// Records, during its lifetime, the changes of accessible names and descriptions of widgets that
/// are announced to assistive technology, and what it is told to say or has the focus. Only one may
/// exist at a time.
class Announcements {
public:
    Announcements();
    ~Announcements();
    Announcements(const Announcements&) = delete;
    Announcements& operator=(const Announcements&) = delete;

    /// The number of announcements.
    int count() const { return count_; }
    /// The announcements of a text that had not changed, as "IDENTIFIER: TEXT". The first
    /// announcement of a widget that was created meanwhile never counts.
    const std::vector<std::string>& repeated() const { return repeated_; }

    /// What was announced by `announce`, in order, as far as a screen reader can still ask for it,
    /// which it does only after the event.
    std::vector<std::string> said() const;
    /// The names of what was reported to have the focus, in order.
    const std::vector<std::string>& focused() const { return focused_; }

    /// Called for each accessibility event.
    void hear(QAccessibleEvent& event);

private:
    using Words = std::pair<QString, QString>;  ///< name and description
    struct Known {
        QPointer<QWidget> widget;  ///< null once the widget is deleted
        Words words;
    };

    static Words wordsOf(const QWidget& widget);

    std::map<QWidget*, Known> known_;
    std::vector<std::string> repeated_;
    std::vector<QPointer<QObject>> said_;
    std::vector<std::string> focused_;
    int count_ = 0;
};

}  // namespace tallowcrest
