#pragma once

#include <QByteArray>

namespace tallowcrest {

/// The desktop's leave for a window to come to the front, where the platform plugins of Qt that
/// know such tokens look for one. It stands there as long as this object lives and for what was
/// posted to the event loop meanwhile, as windows come to the front on the next turn. No longer: it
/// is meant for this one time, and programs that are started later would inherit it. Main thread.
class LentActivationToken {
public:
    /// Empty when the desktop gave none. One that was lent before is not for this time and goes;
    /// what the desktop gave this program at its start stays.
    explicit LentActivationToken(QByteArray token);
    LentActivationToken(const LentActivationToken&) = delete;
    LentActivationToken& operator=(const LentActivationToken&) = delete;
    ~LentActivationToken();

private:
    QByteArray token_;
};

}  // namespace tallowcrest
