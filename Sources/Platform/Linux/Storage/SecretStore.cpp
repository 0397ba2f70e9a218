// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Storage/SecretStore.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <libsecret/secret.h>
#include <memory>
#include <mutex>
#include <thread>

namespace platform::desktop {

namespace {
using namespace std::chrono_literals;

const SecretSchema *schema() {
    static const SecretSchema schema = [] {
        SecretSchema made{};
        made.name = "org.quillory.ApiKey";
        made.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return &schema;
}
constexpr const char *serviceAttribute = "openrouter";

/// Takes a cancellable and a place for an error. Errors are not passed on: they only say that nothing has happened.
template <typename Result> using Operation = std::function<Result(GCancellable *, GError **)>;

struct Unref {
    void operator()(GCancellable *cancellable) const { g_object_unref(cancellable); }
};

/// An operation on a thread of its own: libsecret may go on waiting for a service that died, even after it was
/// cancelled. A thread that never returns is abandoned together with everything that it needs.
template <typename Result> struct UnderWay {
    std::mutex mutex;
    std::condition_variable_any changed;
    std::optional<Result> result;
    std::unique_ptr<GCancellable, Unref> cancellable{g_cancellable_new()};

    void run(const Operation<Result> &operation) {
        GError *error = nullptr;
        Result answer = operation(cancellable.get(), &error);
        g_clear_error(&error);
        const std::scoped_lock lock(mutex);
        result = std::move(answer);
        changed.notify_all();
    }
};

std::chrono::milliseconds patience() {
    // Without a display nobody can be asked for the store's password.
    const bool canAsk = !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    return canAsk ? 2min : 5s;
}

/// The result of an operation; a default value if there was none in time.
template <typename Result> Result outcome(const Operation<Result> &operation, const std::stop_token &stop) {
    const auto underWay = std::make_shared<UnderWay<Result>>();
    std::thread([underWay, operation] { underWay->run(operation); }).detach();
    std::unique_lock lock(underWay->mutex);
    underWay->changed.wait_for(lock, stop, patience(), [&] { return underWay->result.has_value(); });
    if (!underWay->result) {
        lock.unlock();
        g_cancellable_cancel(underWay->cancellable.get());
        return {};
    }
    return *std::move(underWay->result);
}

struct FreeItems {
    void operator()(GList *items) const { g_list_free_full(items, g_object_unref); }
};
using Items = std::unique_ptr<GList, FreeItems>;

/// The matching items, locked ones too. Never asks the user to unlock anything.
Items search(SecretSearchFlags flags, GCancellable *cancellable, GError **error) {
    return Items(
        secret_password_search_sync(schema(), flags, cancellable, error, "service", serviceAttribute, nullptr));
}

std::optional<QString> unlockedSecret(GCancellable *cancellable, GError **error) {
    const Items items = search(SECRET_SEARCH_LOAD_SECRETS, cancellable, error);
    if (!items) {
        return std::nullopt;
    }
    const std::unique_ptr<SecretValue, void (*)(SecretValue *)> value(
        secret_retrievable_retrieve_secret_sync(static_cast<SecretRetrievable *>(items->data), cancellable, error),
        [](SecretValue *held) { secret_value_unref(held); });
    const gchar *const text = value ? secret_value_get_text(value.get()) : nullptr;
    return text == nullptr ? std::nullopt : std::optional(QString::fromUtf8(text));
}

} // namespace

bool SecretService::store(const QString &secret, const std::stop_token &stop) {
    const auto operation = [bytes = secret.toUtf8()](GCancellable *cancellable, GError **error) {
        return secret_password_store_sync(schema(), SECRET_COLLECTION_DEFAULT, "Quillory: OpenRouter API key",
                                          bytes.constData(), cancellable, error, "service", serviceAttribute,
                                          nullptr) != 0;
    };
    return outcome<bool>(operation, stop);
}

std::optional<QString> SecretService::lookUp(Unlocking unlocking, const std::stop_token &stop) {
    if (unlocking == Unlocking::never) {
        return outcome<std::optional<QString>>(unlockedSecret, stop);
    }
    const auto operation = [](GCancellable *cancellable, GError **error) {
        const std::unique_ptr<gchar, void (*)(gchar *)> secret(
            secret_password_lookup_nonpageable_sync(schema(), cancellable, error, "service", serviceAttribute, nullptr),
            secret_password_free);
        return secret ? std::optional(QString::fromUtf8(secret.get())) : std::nullopt;
    };
    return outcome<std::optional<QString>>(operation, stop);
}

bool SecretService::clear(const std::stop_token &stop) {
    // Clearing gives the same answer for an empty store and for one that stayed locked.
    const auto operation = [](GCancellable *cancellable, GError **error) {
        secret_password_clear_sync(schema(), cancellable, error, "service", serviceAttribute, nullptr);
        return *error == nullptr && !search(SECRET_SEARCH_ALL, cancellable, error) && *error == nullptr;
    };
    return outcome<bool>(operation, stop);
}

} // namespace platform::desktop
