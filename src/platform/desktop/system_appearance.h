#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <QString>

namespace tallowcrest {

/// Asks the desktop whether the user prefers a dark appearance, and reports every change. For
/// desktops that do not set Qt's palette and publish the preference only on the session bus.
/// Without a bus or an answer nothing is reported. Main thread.
class SystemAppearance final : public QObject {
    Q_OBJECT

public:
    explicit SystemAppearance(QObject* parent = nullptr);

    /// Asks without blocking; the answer arrives as `preferenceChanged`.
    void start();

signals:
    void preferenceChanged(bool prefersDark);

private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void report(const QVariant& value);

    QDBusConnection bus_;
};

}  // namespace tallowcrest
