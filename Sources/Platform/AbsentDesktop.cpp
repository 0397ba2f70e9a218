// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/AbsentDesktop.h"

#include <chrono>

namespace platform {

namespace {

class AbsentElement final : public AXElementBackend {
  public:
    [[nodiscard]] std::optional<AXValue> copyAttributeValue(AXAttribute /*attribute*/) const override {
        return std::nullopt;
    }
    [[nodiscard]] bool isAttributeSettable(AXAttribute /*attribute*/) const override { return false; }
    bool setAttributeValue(AXAttribute /*attribute*/, const AXValue & /*value*/) const override { return false; }
    [[nodiscard]] qint32 pid() const override { return 0; }
    [[nodiscard]] bool isEqual(const AXElementBackend &other) const override { return this == &other; }
    [[nodiscard]] std::vector<AXSubtreeNode> copySubtree(AXSubtreeLimits /*limits*/,
                                                         AXFreshness /*freshness*/) const override {
        return {};
    }
    void prepareSubtree(AXSubtreeLimits /*limits*/, AXFreshness /*freshness*/) const override {}
};

[[noreturn]] void throwNoFiles() {
    throw FileError("There are no files without a desktop.");
}

} // namespace

Platform AbsentDesktop::with(Process &process, URLSession &urlSession, UserDefaults &userDefaults, MainQueue *mainQueue,
                             Workspace *workspace) {
    return {.accessibility = *this,
            .application = *this,
            .codeSigning = *this,
            .eventTaps = *this,
            .fileSystem = *this,
            .keyPoster = *this,
            .mainQueue = mainQueue != nullptr ? *mainQueue : *this,
            .panelWindows = *this,
            .pasteboard = *this,
            .process = process,
            .screens = *this,
            .statusBar = *this,
            .systemTools = *this,
            .urlSession = urlSession,
            .userDefaults = userDefaults,
            .workspace = workspace != nullptr ? *workspace : *this};
}

AXUIElement AbsentDesktop::createSystemWide() {
    return AXUIElement(std::make_shared<AbsentElement>());
}

AXUIElement AbsentDesktop::createApplication(qint32 /*pid*/) {
    return createSystemWide();
}

void AbsentDesktop::runAlert(const Alert & /*alert*/, std::function<void(int)> /*answered*/) {}

std::unique_ptr<ProgressWindow> AbsentDesktop::showProgress(const QString & /*title*/,
                                                            std::function<void()> /*cancel*/) {
    return nullptr;
}

std::optional<SigningInformation> AbsentDesktop::signingInformation(const QString & /*bundle*/,
                                                                    const Watch & /*watch*/) const {
    return std::nullopt;
}

void AbsentDesktop::createDirectory(const QString & /*path*/) {
    throwNoFiles();
}

QStringList AbsentDesktop::contentsOfDirectory(const QString & /*path*/) {
    throwNoFiles();
}

void AbsentDesktop::replaceItem(const QString & /*installed*/, const QString & /*found*/, const Approval & /*approve*/,
                                const std::stop_token & /*stop*/) {
    throwNoFiles();
}

bool AbsentDesktop::unpackArchive(const QString & /*archive*/, const QString & /*folder*/,
                                  const std::stop_token & /*stop*/) {
    throwNoFiles();
}

void AbsentDesktop::relaunchAfterExit(const QString & /*application*/) {
    throwNoFiles();
}

std::unique_ptr<EventTap> AbsentDesktop::create(TapCallback /*callback*/) {
    return nullptr;
}

bool AbsentDesktop::postKey(KeyCode /*key*/, EventFlags /*flags*/) {
    return false;
}

void AbsentDesktop::post(std::function<void()> /*work*/) {}

void AbsentDesktop::postAfter(std::chrono::milliseconds /*delay*/, std::function<void()> /*work*/) {}

RegistrationHandle AbsentDesktop::repeat(std::chrono::milliseconds /*interval*/, std::function<void()> /*work*/) {
    return nullptr;
}

Instant AbsentDesktop::now() const {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::unique_ptr<PanelWindow> AbsentDesktop::create() {
    return nullptr;
}

void AbsentDesktop::copyItems(std::function<void(std::optional<PasteboardItems>)> done) {
    done(PasteboardItems());
}

void AbsentDesktop::copyString(std::function<void(std::optional<QString>)> done) {
    done(std::nullopt);
}

void AbsentDesktop::setString(const QString & /*text*/) {}

void AbsentDesktop::writeObjects(const PasteboardItems & /*items*/) {}

RegistrationHandle AbsentDesktop::onChange(std::function<void()> /*changed*/) {
    return nullptr;
}

std::optional<RunningApplication> AbsentDesktop::runningApplication(qint32 /*pid*/) {
    return std::nullopt;
}

void AbsentDesktop::activate(qint32 /*pid*/) {}

} // namespace platform
