#include "platform/desktop/lent_activation_token.h"

#include <mutex>
#include <utility>

#include <QCoreApplication>
#include <QMetaObject>

#include "platform/base/activation_variables.h"
#include "platform/base/environment_lock.h"

namespace tallowcrest {
namespace {

/// The environment is the process's, so there is one for all objects; empty when none is lent.
QByteArray& tokenThatStandsThere() {
    static QByteArray token;
    return token;
}

/// Unless another stands there by now.
void takeBack(const QByteArray& token) {
    if (!token.isEmpty() && tokenThatStandsThere() == token) {
        const std::lock_guard guard(environmentLock());
        qunsetenv(activationTokenVariable);
        tokenThatStandsThere().clear();
    }
}

}  // namespace

LentActivationToken::LentActivationToken(QByteArray token) : token_(std::move(token)) {
    takeBack(tokenThatStandsThere());
    if (!token_.isEmpty()) {
        const std::lock_guard guard(environmentLock());
        qputenv(activationTokenVariable, token_);
        tokenThatStandsThere() = token_;
    }
}

LentActivationToken::~LentActivationToken() {
    if (!token_.isEmpty()) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [token = std::move(token_)] { takeBack(token); },
            Qt::QueuedConnection);
    }
}

}  // namespace tallowcrest
