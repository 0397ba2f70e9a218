// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "SimulatedDesktop/SimulatedDesktop.h"

namespace quillory::test {

using namespace std::chrono_literals;

bool SimulatedDesktop::press(platform::KeyCode key) {
    const bool passes = eventTaps.press(key) == platform::TapVerdict::pass;
    advance(0);
    return passes;
}

// Whatever has the focus takes the keys, wherever the program meant them to go.
bool SimulatedDesktop::postKey(platform::KeyCode key, platform::EventFlags flags) {
    const bool pastes = key == platform::keyCode::v;
    typed += (flags == platform::eventFlag::command ? QStringLiteral("Command-") : QStringLiteral("?-")) +
             (pastes ? u'V' : u'A');
    const Node field = applications.focused;
    if (pastes && field) {
        mainQueue.postAfter(pasteDelay, [this, field, replaces = m_allSelected] {
            const QString pasted = pasteboard.fetch();
            field->write(replaces ? pasted : field->value() + pasted);
        });
    }
    m_allSelected = !pastes;
    return true;
}

QString SimulatedPasteboard::string() const {
    return items.empty() ? QString() : QString::fromUtf8(items.front().representations.front().second);
}

void SimulatedPasteboard::copy(platform::PasteboardItems content) {
    items = std::move(content);
    ++m_changeCount;
}

void SimulatedPasteboard::copyItems(std::function<void(std::optional<platform::PasteboardItems>)> done) {
    m_queue.postAfter(5ms, [this, done = std::move(done)] { done(hangs ? std::nullopt : std::optional(items)); });
}

} // namespace quillory::test
