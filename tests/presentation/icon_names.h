#pragma once

#include <QDir>
#include <QString>
#include <QStringList>

namespace tallowcrest {

/// The names of all line icons, in alphabetical order: the files of the resource folder, except the
/// application's own icon.
inline QStringList iconNames() {
    using namespace Qt::StringLiterals;
    QStringList names;
    for (const QString& file : QDir(u":/icons"_s).entryList(QDir::Files, QDir::Name)) {
        names.append(file.chopped(4));
    }
    names.removeOne(u"tallowcrest"_s);
    return names;
}

}  // namespace tallowcrest
