#include "advisor/stored_key.h"

#include <cstdint>
#include <utility>

#include "core/jobs/jobs.h"
#include "core/settings/settings_owner.h"

namespace tallowcrest {

StoredKey::StoredKey(const Services& services, AdvisorPorts ports)
    : services_(services), ports_(std::move(ports)) {}

void StoredKey::forbidDumps() const {
    if (hasStore()) {
        ports_.secrets->forbidDumps();
    }
}

void StoredKey::find(JobScope& jobs, std::function<void(bool)> then) const {
    jobs.run(
        Lane::secrets, [secrets = ports_.secrets](const Stop&) { return secrets->isStored(); },
        std::move(then));
}

void StoredKey::read(JobScope& jobs, std::function<void(std::optional<ReadKey>)> then) const {
    jobs.run(
        Lane::secrets,
        [secrets = ports_.secrets, present = generation_](const Stop&) -> std::optional<ReadKey> {
            const std::uint64_t generation = *present;
            auto text = readOpenAIKey(*secrets);
            return text ? std::optional(ReadKey(*std::move(text), generation, present))
                        : std::nullopt;
        },
        std::move(then));
}

Outcome StoredKey::readAccess(JobScope& jobs, std::function<void()> begun,
                              std::function<std::optional<Endpoint>()> endpoint,
                              std::function<Outcome(std::optional<ProviderAccess>)> then) const {
    const bool isRedacted = services_.settings.values().aiRedactProcessDetails;
    if (!hasStore()) {
        return then(accessTo(endpoint(), {}, isRedacted));
    }
    begun();
    read(jobs, [this, endpoint = std::move(endpoint), then = std::move(then),
                isRedacted](std::optional<ReadKey> key) {
        then(accessTo(endpoint(), std::move(key), isRedacted));
    });
    return Outcome::asked();
}

template <class Change>
void StoredKey::change(JobScope& jobs, Change change, std::function<void(bool)> then) {
    // What was read before must no longer be sent.
    ++*generation_;
    jobs.run(
        Lane::secrets,
        [secrets = ports_.secrets, generation = generation_,
         change = std::move(change)](const Stop&) {
            const bool isChanged = change(*secrets);
            // Nor what another thread has read meanwhile.
            ++*generation;
            return isChanged;
        },
        std::move(then));
}

void StoredKey::save(JobScope& jobs, SecretText key, std::function<void(bool)> then) {
    change(
        jobs,
        [key = std::move(key)](SecretStore& secrets) {
            // An owner who is asked is asked once, by `add`.
            secrets.remove(false);
            return secrets.add(key);
        },
        std::move(then));
}

void StoredKey::remove(JobScope& jobs, std::function<void(bool)> then) {
    change(
        jobs, [](SecretStore& secrets) { return secrets.remove(true); }, std::move(then));
}

std::optional<ProviderAccess> StoredKey::accessTo(const std::optional<Endpoint>& endpoint,
                                                  std::optional<ReadKey> key,
                                                  bool wasRedacted) const {
    if (key && key->ifStillStored() == nullptr) {
        key.reset();
    }
    const bool needsKey = !endpoint || endpoint->needsKey;
    if ((needsKey && !key) || !hasExchange()) {
        return std::nullopt;
    }
    const Settings& settings = services_.settings.values();
    return ProviderAccess{ports_.http, endpoint, std::move(key), settings.openAIModel,
                          wasRedacted || settings.aiRedactProcessDetails};
}

}  // namespace tallowcrest
