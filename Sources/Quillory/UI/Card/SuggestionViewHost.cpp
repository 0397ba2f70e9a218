// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/SuggestionViewHost.h"

#include "Quillory/Panel/SuggestionPanelController.h"
#include "Quillory/UI/AccessibleViews.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <limits>

namespace quillory::ui {

namespace {

// It is not known here which screen the panel will be on, so it has to fit on any of them.
int tallestPanel() {
    int height = std::numeric_limits<int>::max();
    for (const QScreen *screen : QGuiApplication::screens()) {
        height = std::min(height, screen->availableGeometry().height() - 2 * static_cast<int>(panelScreenMargin));
    }
    return height;
}

} // namespace

SuggestionViewHost::SuggestionViewHost() {
    installAccessibleViews();
}

platform::Size SuggestionViewHost::setRootView(const SuggestionCards &cards, double width,
                                               std::function<void(int)> onAccept, std::function<void()> onDismiss) {
    m_stack.setContent(cards, std::move(onAccept), std::move(onDismiss));
    m_stack.layOut(qRound(width), tallestPanel());
    return {static_cast<double>(m_stack.width()), static_cast<double>(m_stack.height())};
}

} // namespace quillory::ui
