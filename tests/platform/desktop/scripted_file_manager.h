#pragma once

#include <QDBusContext>
#include <QDBusError>
#include <QObject>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// A fake file manager that records what it is asked to show.
class ScriptedFileManager final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QStringList shown;
    bool refuses = false;

public slots:
    // The method name of the D-Bus interface.
    void ShowItems(const QStringList& addresses, const QString& /*startup*/) {
        if (refuses) {
            sendErrorReply(QDBusError::Failed, u"not today"_s);
            return;
        }
        shown += addresses;
    }
};

}  // namespace tallowcrest
