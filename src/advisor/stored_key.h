#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "advisor/advisor_ports.h"
#include "advisor/endpoint.h"
#include "advisor/openai_key.h"
#include "advisor/provider_exchange.h"
#include "core/outcome.h"
#include "core/services.h"

namespace tallowcrest {

class JobScope;

/// The key of the provider in the system's store, and the access to the provider that it gives.
/// From the moment when it is to be removed or replaced, a key that was read before counts as none.
/// The store works in `Lane::secrets`; `then` is called on the main thread, unless `jobs`, which is
/// the caller's, is gone by then. Main thread.
class StoredKey {
public:
    /// The references must outlive the object.
    StoredKey(const Services& services, AdvisorPorts ports);

    /// Whether there is a store. Without one the operations must not be called.
    bool hasStore() const { return ports_.secrets != nullptr; }
    /// Whether a provider can be asked at all.
    bool hasExchange() const { return ports_.http != nullptr; }

    /// From now on a crash leaves no dump of the memory. Does nothing without a store.
    void forbidDumps() const;

    /// Calls `then(isStored)`. Does not ask the owner to unlock the store, unlike the others.
    void find(JobScope& jobs, std::function<void(bool)> then) const;
    /// Prepares a request: calls `begun()` and reads the key, if there is a store, and then calls
    /// `then(access)` for the endpoint that `endpoint()` returns by then, as of `accessTo`.
    /// Redaction that is turned on meanwhile counts, but not one that is turned off. Returns the
    /// outcome of `then`, or `asked` when that comes later.
    Outcome readAccess(JobScope& jobs, std::function<void()> begun,
                       std::function<std::optional<Endpoint>()> endpoint,
                       std::function<Outcome(std::optional<ProviderAccess>)> then) const;
    /// Calls `then(isSaved)`. The older key is removed first; where that fails, `SecretStore::add`
    /// decides.
    void save(JobScope& jobs, SecretText key, std::function<void(bool)> then);
    /// Calls `then(isRemoved)`.
    void remove(JobScope& jobs, std::function<void(bool)> then);

private:
    /// Calls `then(key)`, absent as for `readOpenAIKey`.
    void read(JobScope& jobs, std::function<void(std::optional<ReadKey>)> then) const;
    /// What a request to `endpoint` needs, with the model and the redaction of the
    /// settings. Absent when nothing can
    /// be asked: without a key that still is the stored one, unless the endpoint needs none, and
    /// without an exchange.
    std::optional<ProviderAccess> accessTo(const std::optional<Endpoint>& endpoint,
                                           std::optional<ReadKey> key, bool wasRedacted) const;
    template <class Change>
    void change(JobScope& jobs, Change change, std::function<void(bool)> then);

    Services services_;
    AdvisorPorts ports_;
    /// Shared with the keys that were read and with the work in the background.
    std::shared_ptr<ReadKey::Generation> generation_ = std::make_shared<ReadKey::Generation>(0);
};

}  // namespace tallowcrest
