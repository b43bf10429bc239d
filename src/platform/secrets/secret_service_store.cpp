#include "platform/secrets/secret_service_store.h"

#include <libsecret/secret.h>

#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "platform/base/core_dumps.h"
#include "platform/base/environment.h"
#include "platform/secrets/cancelled_later.h"
#include "platform/secrets/g_handles.h"
#include "platform/secrets/private_service.h"

namespace tallowcrest {
namespace {

using Attributes = std::unique_ptr<GHashTable, Releaser<g_hash_table_unref>>;
using Value =
    std::unique_ptr<SecretValue, Releaser<[](SecretValue* value) { secret_value_unref(value); }>>;
using Items =
    std::unique_ptr<GList, Releaser<[](GList* items) { g_list_free_full(items, g_object_unref); }>>;
using Context = std::unique_ptr<GMainContext, Releaser<g_main_context_unref>>;

constexpr const char* serviceAttribute = "service";
constexpr const char* accountAttribute = "account";
constexpr const char* label = "Tallowcrest: OpenAI API key";

const SecretSchema& schema() {
    static const SecretSchema result = [] {
        SecretSchema made{};
        made.name = keychainService.data();
        // Keyrings that are locked do not know the name of the schema.
        made.flags = SECRET_SCHEMA_DONT_MATCH_NAME;
        made.attributes[0] = {serviceAttribute, SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {accountAttribute, SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return result;
}

/// Empty when the environment names no session bus. One that would have to be started for this is
/// not looked for.
std::string sessionBusAddress() {
    const std::lock_guard guard(environmentLock());
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
        address != nullptr && *address != '\0') {
        return address;
    }
    if (const char* folder = std::getenv("XDG_RUNTIME_DIR"); folder != nullptr && *folder == '/') {
        const std::unique_ptr<char, Releaser<g_free>> escaped(g_dbus_address_escape_value(folder));
        return std::string("unix:path=") + escaped.get() + "/bus";
    }
    return {};
}

/// The calling thread delivers what arrives for it itself: the main thread runs the default
/// context.
class OwnMainContext {
public:
    OwnMainContext() : context_(g_main_context_new()) {
        g_main_context_push_thread_default(context_.get());
    }
    OwnMainContext(const OwnMainContext&) = delete;
    OwnMainContext& operator=(const OwnMainContext&) = delete;
    ~OwnMainContext() { g_main_context_pop_thread_default(context_.get()); }

private:
    Context context_;
};

/// One operation on the service. No error is told apart from another one: all of them mean that
/// there is no answer.
class Operation {
public:
    /// Connects. With `opensSession` secrets can be passed, encrypted where the service can.
    Operation(const SecretServiceStore::Limits& limits, const std::stop_token& stop,
              bool opensSession)
        : limits_(limits),
          cancelled_(limits.answer, stop),
          attributes_(secret_attributes_build(&schema(), serviceAttribute, keychainService.data(),
                                              accountAttribute, openAIKeyAccount.data(), nullptr)) {
        const std::string address = sessionBusAddress();
        if (address.empty()) {
            return;
        }
        connection_.reset(g_dbus_connection_new_for_address_sync(
            address.c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, cancelled_.get(), nullptr));
        if (!connection_) {
            return;
        }
        service_.reset(openPrivateService(
            connection_.get(), opensSession ? SECRET_SERVICE_OPEN_SESSION : SECRET_SERVICE_NONE,
            cancelled_.get()));
    }

    bool isConnected() const { return service_ != nullptr; }

    /// The items with the attributes of the secret, locked ones too; null for none. Absent when
    /// the service does not answer.
    std::optional<Items> search() {
        GError* error = nullptr;
        Items items(secret_service_search_sync(service_.get(), &schema(), attributes_.get(),
                                               SECRET_SEARCH_ALL, cancelled_.get(), &error));
        if (error != nullptr) {
            g_error_free(error);
            return std::nullopt;
        }
        return items;
    }

    /// Asks the owner if any of the items is locked.
    void unlock(GList* items) {
        Items locked;
        for (; items != nullptr; items = items->next) {
            if (secret_item_get_locked(static_cast<SecretItem*>(items->data)) != FALSE) {
                locked.reset(g_list_prepend(locked.release(), g_object_ref(items->data)));
            }
        }
        if (!locked) {
            return;
        }
        cancelled_.limitAgain(limits_.unlock);
        secret_service_unlock_sync(service_.get(), locked.get(), cancelled_.get(), nullptr,
                                   nullptr);
        cancelled_.limitAgain(limits_.answer);
    }

    /// Asks the owner if the item is locked.
    std::optional<SecretText> secretOf(SecretItem* item) {
        GList alone{.data = item, .next = nullptr, .prev = nullptr};
        unlock(&alone);
        if (secret_item_load_secret_sync(item, cancelled_.get(), nullptr) == FALSE) {
            return std::nullopt;
        }
        const Value value(secret_item_get_secret(item));
        if (!value) {
            return std::nullopt;
        }
        gsize size = 0;
        const gchar* bytes = secret_value_get(value.get(), &size);
        return SecretText({bytes, size});
    }

    /// Asks the owner if the default collection is locked or has to be made.
    bool store(const SecretText& secret) {
        const Value value(secret_value_new(
            secret.view().data(), static_cast<gssize>(secret.view().size()), "text/plain"));
        cancelled_.limitAgain(limits_.unlock);
        return secret_service_store_sync(service_.get(), &schema(), attributes_.get(),
                                         SECRET_COLLECTION_DEFAULT, label, value.get(),
                                         cancelled_.get(), nullptr) != FALSE;
    }

    /// The library leaves locked items. The service may ask the owner about the others.
    void clear() {
        cancelled_.limitAgain(limits_.unlock);
        secret_service_clear_sync(service_.get(), &schema(), attributes_.get(), cancelled_.get(),
                                  nullptr);
        cancelled_.limitAgain(limits_.answer);
    }

private:
    SecretServiceStore::Limits limits_;
    OwnMainContext context_;
    CancelledLater cancelled_;
    Attributes attributes_;
    GObjectHandle<GDBusConnection> connection_;
    GObjectHandle<SecretService> service_;
};

}  // namespace

SecretServiceStore::SecretServiceStore(std::stop_token stop)
    : SecretServiceStore(std::move(stop), Limits()) {}

SecretServiceStore::SecretServiceStore(std::stop_token stop, Limits limits)
    : stop_(std::move(stop)), limits_(limits) {}

bool SecretServiceStore::isStored() {
    Operation operation(limits_, stop_, false);
    if (!operation.isConnected()) {
        return false;
    }
    const auto items = operation.search();
    return items && *items;
}

void SecretServiceStore::forbidDumps() {
    forbidCoreDumps();
}

std::optional<SecretText> SecretServiceStore::read() {
    forbidCoreDumps();
    Operation operation(limits_, stop_, true);
    if (!operation.isConnected()) {
        return std::nullopt;
    }
    const auto items = operation.search();
    if (!items || !*items) {
        return std::nullopt;
    }
    return operation.secretOf(static_cast<SecretItem*>((*items)->data));
}

bool SecretServiceStore::add(const SecretText& secret) {
    forbidCoreDumps();
    Operation operation(limits_, stop_, true);
    return operation.isConnected() && operation.store(secret);
}

bool SecretServiceStore::remove(bool unlocks) {
    Operation operation(limits_, stop_, false);
    if (!operation.isConnected()) {
        return false;
    }
    if (unlocks) {
        const auto items = operation.search();
        if (!items || !*items) {
            return items.has_value();
        }
        operation.unlock(items->get());
    }
    operation.clear();
    const auto left = operation.search();
    return left && !*left;
}

}  // namespace tallowcrest
