#pragma once

#include <QByteArray>

namespace tallowcrest {

/// Sets the activation token in the environment, where Qt's platform plugins look for it when they
/// bring a window to the front. It stays for the lifetime of this object and for what was posted to
/// the event loop meanwhile, because windows come to the front on the next turn of the loop. Then
/// it is removed: it is valid only once, and later children would inherit it. Main thread.
class ScopedActivationToken {
public:
    /// `token` is empty when the desktop gave none. Removes the token of an earlier object, but
    /// keeps the one that this program was started with.
    explicit ScopedActivationToken(QByteArray token);
    ScopedActivationToken(const ScopedActivationToken&) = delete;
    ScopedActivationToken& operator=(const ScopedActivationToken&) = delete;
    ~ScopedActivationToken();

private:
    QByteArray token_;
};

}  // namespace tallowcrest
