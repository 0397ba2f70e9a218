// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Applications/DesktopEntries.h"

#include "Platform/Linux/Folders.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <glib.h>
#include <memory>

namespace platform::desktop {

namespace {
constexpr qint64 largestEntry = 1 << 18;

/// A text that GLib has allocated; null when there is none.
using GlibText = std::unique_ptr<gchar, decltype(&g_free)>;
} // namespace

std::optional<QString> nameInDesktopEntry(const QByteArray &entry, const QString &locale) {
    const std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)> file(g_key_file_new(), &g_key_file_unref);
    constexpr auto group = G_KEY_FILE_DESKTOP_GROUP;
    const auto size = static_cast<gsize>(entry.size());
    if (!g_key_file_load_from_data(file.get(), entry.constData(), size, G_KEY_FILE_KEEP_TRANSLATIONS, nullptr)) {
        return std::nullopt;
    }
    const GlibText type(g_key_file_get_string(file.get(), group, G_KEY_FILE_DESKTOP_KEY_TYPE, nullptr), &g_free);
    const GlibText name(g_key_file_get_locale_string(file.get(), group, G_KEY_FILE_DESKTOP_KEY_NAME,
                                                     locale.toLatin1().constData(), nullptr),
                        &g_free);
    const bool isNamed = g_strcmp0(type.get(), G_KEY_FILE_DESKTOP_TYPE_APPLICATION) == 0 && name && *name != '\0';
    return isNamed ? std::optional(QString::fromUtf8(name.get())) : std::nullopt;
}

QStringList entryFolders() {
    QStringList bases{QFileInfo(folders::data()).path()};
    const QString shared = qEnvironmentVariable("XDG_DATA_DIRS");
    bases +=
        (shared.isEmpty() ? QStringLiteral("/usr/local/share:/usr/share") : shared).split(u':', Qt::SkipEmptyParts);
    for (QString &base : bases) {
        base += QStringLiteral("/applications/");
    }
    return bases;
}

std::optional<QString> nameInFolders(const QStringList &ids, const QStringList &folders) {
    for (const QString &id : ids) {
        for (const QString &folder : folders) {
            QFile file(folder + id + QStringLiteral(".desktop"));
            if (id.contains(u'/') || !file.open(QIODevice::ReadOnly)) {
                continue;
            }
            if (auto name = nameInDesktopEntry(file.read(largestEntry), QLocale::system().name())) {
                return name;
            }
        }
    }
    return std::nullopt;
}

} // namespace platform::desktop
