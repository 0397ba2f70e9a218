// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedDesktop.h"

namespace quillory::test {

bool SimulatedDesktop::press(platform::KeyCode key) {
    const bool passes = eventTaps.press(key) == platform::TapVerdict::pass;
    advance(0);
    return passes;
}

// Whatever has the focus takes the keys, wherever the program meant them to go.
bool SimulatedDesktop::postKey(platform::KeyCode key, platform::EventFlags flags) {
    const bool pastes = key == platform::keyCode::v;
    typed += (flags == platform::eventFlag::command ? u"Command-"_qs : u"?-"_qs) + (pastes ? u'V' : u'A');
    if (const Node field = applications.focused; pastes && field) {
        mainQueue.postAfter(pasteDelay, [this, field, replaces = m_allSelected] {
            const QString pasted = pasteboard.fetch();
            field->write(replaces ? pasted : field->value() + pasted);
        });
    }
    m_allSelected = !pastes;
    return true;
}

} // namespace quillory::test
