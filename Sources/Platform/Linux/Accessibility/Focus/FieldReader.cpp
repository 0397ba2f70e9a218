// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Focus/FieldReader.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
constexpr auto factsLifetime = 1s;
// A longer field is only counted while its length alone is asked for.
constexpr int countedTextLimit = 8'000;
} // namespace

void FieldReader::askRole(Questions &questions) {
    questions.ask(calls::role(m_element.ref), [this](const Reply &reply) {
        if (const auto role = reply.as<Role>()) {
            m_kind.role = *role;
            m_hasFacts = true;
        }
    });
}

void FieldReader::askFacts(Questions &questions) {
    const auto &ref = m_element.ref;
    questions.ask(calls::attributes(ref), [this](const Reply &reply) {
        m_kind.attributes = reply.as<Attributes>().value_or(Attributes());
        m_factsAt = reply.isAnswered() ? Clock::now() : m_factsAt;
    });
    questions.ask(calls::childCount(ref),
                  [this](const Reply &reply) { m_kind.hasChildren = reply.as<int>().value_or(0) > 0; });
    questions.fetch(calls::interfaces(ref), m_interfaces);
    questions.fetch(calls::name(ref), m_name);
}

ElementReading FieldReader::read(Connection &connection, TextWanted wanted, const ElementRef &window,
                                 Deadline deadline) {
    ElementReading reading{.element = m_element, .takenAt = Clock::now(), .wanted = wanted};
    Questions questions;
    askRole(questions);
    if (!m_hasFacts || reading.takenAt - m_factsAt > factsLifetime) {
        askFacts(questions);
    }
    questions.ask(calls::states(m_element.ref), [&](const Reply &reply) {
        const auto states = reply.as<States>();
        reading.isAnswered = states.has_value();
        reading.kind.states = states.value_or(States());
        // Some toolkits name a removed element an unknown object, others an unknown method.
        reading.isGone = reply.isError() || reading.kind.states.has(State::defunct);
    });
    if (!window.isNull()) {
        questions.fetch(calls::states(window), reading.windowStates);
    }
    questions.ask(calls::extents(m_element.ref), [&](const Reply &reply) { reading.frame = reply.extents(); });
    readText(connection, reading, questions, deadline);
    m_kind.states = reading.kind.states;
    reading.kind = m_kind;
    reading.isAnswered = reading.isAnswered && m_hasFacts;
    reading.name = m_name;
    reading.placeholder = placeholder();
    reading.isValueSettable = m_kind.states.has(State::editable) && !m_kind.states.has(State::readOnly) &&
                              hasInterface(editableTextInterface);
    return reading;
}

void FieldReader::readText(Connection &connection, ElementReading &reading, Questions &questions, Deadline deadline) {
    if (m_text && reading.wanted != TextWanted::nothing) {
        m_text->setLimit(textLimit(reading.wanted));
        m_text->askAgain(questions);
    }
    questions.run(connection, deadline);
    m_kind.states = reading.kind.states;
    if (m_kind.role == Role::passwordText) {
        // What is typed has just been hidden. A text that was asked for in this round is dropped unseen.
        m_text.reset();
    }
    if (reading.wanted == TextWanted::nothing || !m_hasFacts || !hasValue()) {
        return;
    }
    if (!hasInterface(textInterface)) {
        reading.value = m_kind.role == Role::label || m_kind.role == Role::staticText ? m_name : std::nullopt;
        return;
    }
    if (!m_text) {
        m_text.emplace(m_element.ref, hasFinalBreak());
        m_text->setLimit(textLimit(reading.wanted));
    }
    auto outcome = m_text->finish(connection, deadline);
    reading.value = std::move(outcome.value);
    reading.characters = outcome.characters;
}

// A page or a list has text, too, but all of it is its elements'. Passwords are not read, not even their length.
bool FieldReader::hasValue() const {
    switch (m_kind.role) {
    case Role::passwordText:
        return false;
    case Role::entry:
    case Role::text:
    case Role::label:
    case Role::staticText:
        return true;
    default:
        return m_kind.states.has(State::editable);
    }
}

int FieldReader::textLimit(TextWanted wanted) const {
    return wanted == TextWanted::value ? m_textLimit : countedTextLimit;
}

bool FieldReader::hasInterface(const char *name) const {
    return std::find(m_interfaces.begin(), m_interfaces.end(), name) != m_interfaces.end();
}

// Whether a last line break only gives the last line its height: in rich-text boxes, and in Chromium (the one that
// names a text model) also in plain ones, whose own last break it gives twice.
bool FieldReader::hasFinalBreak() const {
    const auto tag = m_kind.attributes.find("tag");
    if (tag == m_kind.attributes.end() || tag->second == "input") {
        return false;
    }
    return tag->second != "textarea" || m_kind.attributes.contains("text-model");
}

std::optional<QString> FieldReader::placeholder() const {
    for (const char *key : {"placeholder-text", "placeholder"}) {
        const auto found = m_kind.attributes.find(key);
        if (found != m_kind.attributes.end() && !found->second.empty()) {
            return QString::fromStdString(found->second);
        }
    }
    // Chromium names a field without a label after its placeholder, and then does not give it a second time.
    const auto source = m_kind.attributes.find("name-from");
    const bool isName = source != m_kind.attributes.end() && source->second == "placeholder";
    return isName ? m_name : std::nullopt;
}

} // namespace platform::desktop::atspi
