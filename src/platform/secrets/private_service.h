#pragma once

#include <libsecret/secret.h>

namespace tallowcrest {

/// A SecretService on a connection of its own, which `openPrivateService` makes. It differs from
/// the library's own in two ways. That one shares a connection in the process, which ends the
/// process when the bus does. And its calls never return when a question to the owner is cancelled,
/// or when the service ends meanwhile. Null when the service does not answer. `flags` as of
/// `secret_service_open`. Blocks; the calling thread needs a main context.
SecretService* openPrivateService(GDBusConnection* connection, SecretServiceFlags flags,
                                  GCancellable* cancellable);

}  // namespace tallowcrest
