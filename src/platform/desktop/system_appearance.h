#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <QString>

namespace tallowcrest {

/// Learns from the desktop whether the owner prefers a dark appearance, and tells every later
/// change. Desktops that give Qt a palette of their own do not need this; the rest publish the
/// preference on the session bus alone. Without a bus or an answer nothing is ever told.
/// Main thread.
class SystemAppearance final : public QObject {
    Q_OBJECT

public:
    explicit SystemAppearance(QObject* parent = nullptr);

    /// Asks without waiting; the answer arrives as `preferenceChanged`.
    void start();

signals:
    void preferenceChanged(bool prefersDark);

private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void tell(const QVariant& value);

    QDBusConnection bus_;
};

}  // namespace tallowcrest
