// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Process/TerminationSignals.h"

namespace platform::desktop {

TerminationSignals::TerminationSignals(std::function<void()> terminate) {
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this, terminate = std::move(terminate)] {
        m_notifier.setEnabled(false);
        terminate();
    });
}

} // namespace platform::desktop
