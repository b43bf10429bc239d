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

/// Hears what assistive technology is told of the names and descriptions of widgets, for as long as
/// it lives; one at a time.
class Announcements {
public:
    Announcements();
    ~Announcements();
    Announcements(const Announcements&) = delete;
    Announcements& operator=(const Announcements&) = delete;

    /// How many there have been.
    int count() const { return count_; }
    /// Those that said the words that had been said before, as "IDENTIFIER: WORDS". Widgets built
    /// meanwhile are known from their first announcement on.
    const std::vector<std::string>& repeated() const { return repeated_; }

    void hear(QAccessibleEvent& event);

private:
    using Words = std::pair<QString, QString>;  ///< name and description
    struct Known {
        QPointer<QWidget> widget;  ///< null once another may have its address
        Words words;
    };

    static Words wordsOf(const QWidget& widget);

    std::map<QWidget*, Known> known_;
    std::vector<std::string> repeated_;
    int count_ = 0;
};

}  // namespace tallowcrest
