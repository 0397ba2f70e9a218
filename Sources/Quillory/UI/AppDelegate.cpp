// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/UI/AppDelegate.h"

#include "Platform/Platform.h"
#include "Quillory/AppSettings.h"
#include "Quillory/FileLog.h"
#include "Quillory/PasteQueue.h"
#include "Quillory/Text.h"
#include "Quillory/TypingMonitor.h"
#include "Quillory/UI/SuggestionViewHost.h"

#include <cstdio>

namespace quillory::ui {

AppDelegate::AppDelegate()
    : m_monitor(std::make_shared<TypingMonitor>([] { return std::make_unique<SuggestionViewHost>(); })) {}

AppDelegate::~AppDelegate() {
    abandonPastes();
}

void AppDelegate::applicationDidFinishLaunching() {
    platform::Accessibility &accessibility = platform::current().accessibility;
    const bool trusted = accessibility.isProcessTrusted();
    FileLog::log(QStringLiteral("launched, accessibility trusted = %1").arg(text::trueOrFalse(trusted)));
    if (!trusted) {
        accessibility.isProcessTrustedWithPrompt();
    }
    m_monitor->start();
    if (AppSettings::shared().apiKey().isEmpty()) {
        std::fputs(
            "quillory: no OpenRouter API key is set; give one with: quillory defaults write openRouterAPIKey -\n",
            stderr);
    }
}

} // namespace quillory::ui
