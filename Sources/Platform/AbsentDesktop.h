// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Platform.h"

namespace platform {

/// A desktop that is not there: no applications, no keys, no windows, no clipboard. For commands, which do without
/// one; what is asked of it answers "absent", what is posted to its queue is dropped, and there are no files.
class AbsentDesktop final : public Accessibility,
                            public Application,
                            public CodeSigning,
                            public EventTaps,
                            public FileSystem,
                            public KeyPoster,
                            public MainQueue,
                            public PanelWindows,
                            public Pasteboard,
                            public Screens,
                            public StatusBar,
                            public SystemTools,
                            public Workspace {
  public:
    /// The services of a program that runs without a desktop. All of them outlive the result.
    /// mainQueue: for programs that have an event loop. workspace: for those that have windows.
    [[nodiscard]] Platform with(Process &process, URLSession &urlSession, UserDefaults &userDefaults,
                                MainQueue *mainQueue = nullptr, Workspace *workspace = nullptr);

    [[nodiscard]] bool isProcessTrusted() override { return false; }
    bool isProcessTrustedWithPrompt() override { return false; }
    void showSettings() override {}
    [[nodiscard]] AXUIElement createSystemWide() override;
    [[nodiscard]] AXUIElement createApplication(qint32 pid) override;
    void runAlert(const Alert &alert, std::function<void(int)> answered) override;
    [[nodiscard]] std::unique_ptr<ProgressWindow> showProgress(const QString &title,
                                                               std::function<void()> cancel) override;
    void terminate() override {}
    [[nodiscard]] std::optional<SigningInformation> signingInformation(const QString &bundle,
                                                                       const Watch &watch) const override;
    [[nodiscard]] std::unique_ptr<EventTap> create(TapCallback callback) override;
    [[nodiscard]] QString temporaryDirectory() const override { return {}; }
    void createDirectory(const QString &path) override;
    [[nodiscard]] QStringList contentsOfDirectory(const QString &path) override;
    void hold(const QString & /*path*/) noexcept override {}
    void removeItem(const QString & /*path*/) noexcept override {}
    void removeAbandoned(const QStringList & /*beginnings*/) noexcept override {}
    void replaceItem(const QString &installed, const QString &found, const Approval &approve,
                     const std::stop_token &stop) override;
    [[nodiscard]] bool unpackArchive(const QString &archive, const QString &folder,
                                     const std::stop_token &stop) override;
    void relaunchAfterExit(const QString &application) override;
    [[nodiscard]] bool userHoldsKeys() override { return false; }
    bool postKey(KeyCode key, EventFlags flags) override;
    void post(std::function<void()> work) override;
    void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
    [[nodiscard]] RegistrationHandle repeat(std::chrono::milliseconds interval, std::function<void()> work) override;
    [[nodiscard]] Instant now() const override;
    [[nodiscard]] std::unique_ptr<PanelWindow> create() override;
    void copyItems(std::function<void(std::optional<PasteboardItems>)> done) override;
    void copyString(std::function<void(std::optional<QString>)> done) override;
    void clearContents() override {}
    void setString(const QString &text) override;
    void writeObjects(const PasteboardItems &items) override;
    [[nodiscard]] qint64 changeCount() override { return 0; }
    [[nodiscard]] qint64 fetchCount() override { return 0; }
    [[nodiscard]] std::vector<Screen> screens() override { return {}; }
    [[nodiscard]] std::optional<Screen> mainScreen() override { return std::nullopt; }
    [[nodiscard]] bool isAvailable() const override { return false; }
    [[nodiscard]] RegistrationHandle onChange(std::function<void()> changed) override;
    void tell(const QString & /*title*/, const QString & /*text*/) override {}
    [[nodiscard]] std::optional<RunningApplication> runningApplication(qint32 pid) override;
    void activate(qint32 pid) override;
};

} // namespace platform
