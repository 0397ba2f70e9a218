// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Platform.h"
#include "Platform/Process.h"
#include "Quillory/Field/AXText.h"
#include "Quillory/Field/PasteQueue.h"
#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/Monitor/TypingMonitor.h"
#include "Quillory/Panel/SuggestionPanelController.h"
#include "Quillory/Records/ChoiceStats.h"
#include "Quillory/Settings/AppSettings.h"

namespace quillory {

/// The typing monitor and everything that it works with, put together for a desktop, whose services outlive this. Main
/// thread only.
struct MonitorAssembly {
    MonitorAssembly(const platform::Platform &desktop, MakeSuggestionHost makeHost)
        : settings(desktop.userDefaults, desktop.process), client(settings, desktop.process, desktop.urlSession),
          stats(desktop.process.homeDirectory()), ax(desktop.accessibility, desktop.workspace),
          pastes(ax, {desktop.keyPoster, desktop.mainQueue, desktop.pasteboard, desktop.workspace}),
          panel(std::move(makeHost), {desktop.eventTaps, desktop.mainQueue, desktop.panelWindows, desktop.screens}),
          monitor({settings, client, stats, ax, pastes, panel, desktop.accessibility, desktop.mainQueue,
                   desktop.process.identifier()}) {}

    AppSettings settings;
    OpenRouterClient client;
    ChoiceStats stats;
    AXText ax;
    PasteQueue pastes;
    SuggestionPanelController panel;
    TypingMonitor monitor;
};

} // namespace quillory
