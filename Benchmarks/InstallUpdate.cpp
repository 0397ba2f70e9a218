// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Verifies and installs a bundle of 50 MB as an update does, beside sha256sum over its files.
#include "Platform/Linux/Updates/BundleInstaller.h"
#include "Platform/Linux/Updates/LinuxCodeSigning.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using platform::desktop::BundleInstaller;
using platform::desktop::LinuxCodeSigning;
using platform::desktop::SigningKey;
using platform::desktop::TrustedKeys;

constexpr int files = 50;
constexpr qsizetype fileSize = 1'000'000;
constexpr int rounds = 9;

double millisecondsOf(const std::function<void()> &work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values.at(values.size() / 2);
}

void run(const QString &command) {
    if (std::system(command.toUtf8().constData()) != 0) {
        throw std::runtime_error("failed: " + command.toStdString());
    }
}

/// The highest memory use since the last reset, in kilobytes.
long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) {
            return std::stol(line.substr(6));
        }
    }
    return 0;
}

void resetPeakMemory() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

void write(const QString &path, const QByteArray &bytes, QFile::Permissions permissions) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        throw std::runtime_error("cannot write the bundle");
    }
    file.setPermissions(permissions);
}

void makeLargeBundle(const QString &bundle, const SigningKey &key) {
    const QFile::Permissions readable = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther;
    QDir().mkpath(bundle);
    std::srand(1);
    for (int i = 0; i < files; ++i) {
        QByteArray bytes(fileSize, '\0');
        std::ranges::generate(bytes, [] { return static_cast<char>(std::rand()); });
        write(bundle + QStringLiteral("/%1").arg(i), bytes, readable);
    }
    // What every bundle has: a program that starts, and its version.
    write(bundle + QStringLiteral("/Info.json"), R"({"CFBundleShortVersionString": "1"})", readable);
    write(bundle + QStringLiteral("/quillory"), "#!/bin/sh\nexit 0\n",
          readable | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther);
    signBundle(bundle, QStringLiteral("1"), key);
}

} // namespace

int main() {
    const SigningKey key = SigningKey::generated(QStringLiteral("BENCHMARK1"));
    TrustedKeys keys;
    keys.add(key.team(), key.publicKey());
    const LinuxCodeSigning signing(keys);
    // On disk, not in memory: an update syncs what it writes.
    const QTemporaryDir folder(QDir::currentPath() + QStringLiteral("/bench-update-XXXXXX"));
    const QString bundle = folder.filePath(QStringLiteral("Quillory.app"));
    const QString applications = folder.filePath(QStringLiteral("Applications"));
    makeLargeBundle(bundle, key);
    const auto approve = [&signing](const QString &path) {
        if (!signing.signingInformation(path, {})) {
            throw std::runtime_error("not genuine");
        }
    };
    std::vector<double> sums;
    std::vector<double> syncs;
    std::vector<double> installs;
    long extra = 0;
    for (int i = 0; i < rounds; ++i) {
        sums.push_back(millisecondsOf([&] { run(QStringLiteral("sha256sum %1/* >/dev/null").arg(bundle)); }));
        run(QStringLiteral("rm -rf %1/copy && cp -r %2 %1/copy").arg(folder.path(), bundle));
        syncs.push_back(millisecondsOf([&] { run(QStringLiteral("sync %1/copy/* %1/copy").arg(folder.path())); }));
        resetPeakMemory();
        const long before = peakMemory();
        installs.push_back(millisecondsOf([&] {
            approve(bundle);
            BundleInstaller(applications, signing).install(bundle, "Quillory.app", approve, {});
        }));
        extra = std::max(extra, peakMemory() - before);
    }
    const double allowed = 1.5 * median(sums) + median(syncs);
    std::printf("sha256sum over its files %.0f ms, syncing them %.0f ms\n", median(sums), median(syncs));
    std::printf("verifying it, copying, syncing, verifying twice more and exchanging %.0f ms (allowed %.0f ms)\n",
                median(installs), allowed);
    std::printf("memory above rest %ld kB\n", extra);
    return 0;
}
