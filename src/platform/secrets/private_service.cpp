#include "platform/secrets/private_service.h"

#include <memory>
#include <mutex>

#include "platform/base/environment.h"
#include "platform/secrets/g_handles.h"

namespace tallowcrest {
namespace {

using VariantHandle = std::unique_ptr<GVariant, Releaser<g_variant_unref>>;

struct Question {
    bool isOver = false;
    GVariant* result = nullptr;  ///< null when the owner said no, or cannot be asked any more
};

void takeSignal(GDBusProxy*, const gchar*, const gchar* name, GVariant* arguments,
                gpointer context) {
    auto& question = *static_cast<Question*>(context);
    if (g_strcmp0(name, "Completed") != 0 || question.isOver ||
        g_variant_is_of_type(arguments, G_VARIANT_TYPE("(bv)")) == FALSE) {
        return;
    }
    question.isOver = true;
    gboolean isDismissed = TRUE;
    GVariant* result = nullptr;
    g_variant_get(arguments, "(bv)", &isDismissed, &result);
    if (isDismissed == FALSE) {
        question.result = result;
    } else {
        g_variant_unref(result);
    }
}

void takeEnd(GObject*, gpointer, gpointer context) {
    static_cast<Question*>(context)->isOver = true;
}

void takeClosing(GDBusConnection*, gboolean, GError*, gpointer context) {
    static_cast<Question*>(context)->isOver = true;
}

/// Blocks until the owner has answered, the service or the bus has ended, or `cancellable` is
/// cancelled. The dialog then ends with the connection: "Dismiss" on a prompt that is shown ends
/// gnome-keyring-daemon 42.1.
Question ask(GDBusProxy* prompt, GCancellable* cancellable) {
    Question question;
    GDBusConnection* const connection = g_dbus_proxy_get_connection(prompt);
    const gulong onSignal = g_signal_connect(prompt, "g-signal", G_CALLBACK(takeSignal), &question);
    const gulong onEnd =
        g_signal_connect(prompt, "notify::g-name-owner", G_CALLBACK(takeEnd), &question);
    const gulong onClosing =
        g_signal_connect(connection, "closed", G_CALLBACK(takeClosing), &question);
    GMainContext* const context = g_main_context_get_thread_default();
    GSource* const wake = g_cancellable_source_new(cancellable);
    g_source_set_dummy_callback(wake);
    g_source_attach(wake, context);

    const VariantHandle begun(g_dbus_proxy_call_sync(prompt, "Prompt", g_variant_new("(s)", ""),
                                                     G_DBUS_CALL_FLAGS_NO_AUTO_START, -1,
                                                     cancellable, nullptr));
    while (begun && !question.isOver && g_cancellable_is_cancelled(cancellable) == FALSE) {
        g_main_context_iteration(context, TRUE);
    }
    g_source_destroy(wake);
    g_source_unref(wake);
    g_signal_handler_disconnect(connection, onClosing);
    g_signal_handler_disconnect(prompt, onEnd);
    g_signal_handler_disconnect(prompt, onSignal);
    return question;
}

void promptAsync(SecretService* service, SecretPrompt* prompt, const GVariantType* type,
                 GCancellable* cancellable, GAsyncReadyCallback callback, gpointer context) {
    const GObjectHandle<GTask> task(g_task_new(service, cancellable, callback, context));
    // The library calls this on the thread that waits for the result and does nothing else.
    VariantHandle result(ask(reinterpret_cast<GDBusProxy*>(prompt), cancellable).result);
    if (!result || (type != nullptr && g_variant_is_of_type(result.get(), type) == FALSE)) {
        g_task_return_new_error(task.get(), G_IO_ERROR, G_IO_ERROR_FAILED, "No answer");
        return;
    }
    g_task_return_pointer(task.get(), result.release(), [](gpointer unclaimed) {
        g_variant_unref(static_cast<GVariant*>(unclaimed));
    });
}

GVariant* promptFinish(SecretService*, GAsyncResult* result, GError** error) {
    return static_cast<GVariant*>(
        g_task_propagate_pointer(reinterpret_cast<GTask*>(result), error));
}

GObject* construct(GType type, guint count, GObjectConstructParam* properties) {
    auto* const parent = static_cast<GObjectClass*>(g_type_class_peek(SECRET_TYPE_SERVICE));
    GObject* const object = parent->constructor(type, count, properties);
    // The parent has set the shared connection, which excludes a given one.
    g_object_set(object, "g-bus-type", G_BUS_TYPE_NONE, nullptr);
    return object;
}

GType privateServiceType() {
    static const GType type = g_type_register_static_simple(
        SECRET_TYPE_SERVICE, "TallowcrestSecretService", sizeof(SecretServiceClass),
        [](gpointer itself, gpointer) {
            static_cast<GObjectClass*>(itself)->constructor = construct;
            static_cast<SecretServiceClass*>(itself)->prompt_async = promptAsync;
            static_cast<SecretServiceClass*>(itself)->prompt_finish = promptFinish;
        },
        sizeof(SecretService), nullptr, static_cast<GTypeFlags>(0));
    return type;
}

}  // namespace

SecretService* openPrivateService(GDBusConnection* connection, SecretServiceFlags flags,
                                  GCancellable* cancellable) {
    GObjectHandle<SecretService> service;
    {
        const std::lock_guard guard(environmentLock());  // the constructor reads a variable
        service.reset(static_cast<SecretService*>(g_object_new(
            privateServiceType(), "g-connection", connection, "flags", flags, nullptr)));
    }
    const gboolean isOpen =
        g_initable_init(reinterpret_cast<GInitable*>(service.get()), cancellable, nullptr);
    return isOpen != FALSE ? service.release() : nullptr;
}

}  // namespace tallowcrest
