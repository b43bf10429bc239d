#include "platform/desktop/scoped_activation_token.h"

#include <mutex>
#include <utility>

#include <QCoreApplication>
#include <QMetaObject>

#include "platform/base/environment.h"

namespace tallowcrest {
namespace {

/// The token in the environment, which all objects share; empty when none is set.
QByteArray& currentToken() {
    static QByteArray token;
    return token;
}

/// Removes `token` unless another one has replaced it.
void remove(const QByteArray& token) {
    if (!token.isEmpty() && currentToken() == token) {
        const std::lock_guard guard(environmentLock());
        qunsetenv(activationTokenVariable);
        currentToken().clear();
    }
}

}  // namespace

ScopedActivationToken::ScopedActivationToken(QByteArray token) : token_(std::move(token)) {
    remove(currentToken());
    if (!token_.isEmpty()) {
        const std::lock_guard guard(environmentLock());
        qputenv(activationTokenVariable, token_);
        currentToken() = token_;
    }
}

ScopedActivationToken::~ScopedActivationToken() {
    if (!token_.isEmpty()) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [token = std::move(token_)] { remove(token); },
            Qt::QueuedConnection);
    }
}

}  // namespace tallowcrest
