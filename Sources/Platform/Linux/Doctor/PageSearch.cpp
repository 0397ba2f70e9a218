// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/PageSearch.h"

#include "Platform/Linux/Accessibility/Bus/Questions.h"
#include "Platform/Linux/Accessibility/Bus/Roles.h"

#include <QUrl>

namespace platform::desktop {

namespace {
using namespace atspi;
using namespace std::chrono_literals;
constexpr auto longestSearch = 3s;
constexpr auto pauseBetweenLooks = 200ms;
constexpr std::size_t maxWindows = 100;
constexpr std::size_t maxElements = 8000;

/// Walks level by level through an application's whole tree.
class PageWalk {
  public:
    PageWalk(Connection &bus, Deadline deadline) : m_bus(bus), m_deadline(deadline) {}

    void run(const std::vector<ElementRef> &windows) {
        std::vector<Place> level;
        for (const ElementRef &window : windows) {
            level.push_back({window, noPage, {}});
        }
        while (!level.empty() && m_facts.isWhole) {
            level = belowOf(level);
        }
    }
    [[nodiscard]] const PagesFacts &facts() const { return m_facts; }
    [[nodiscard]] std::size_t elements() const { return m_seen.size(); }
    [[nodiscard]] bool isAnswered() const { return m_isAnswered; }

  private:
    static constexpr std::size_t noPage = static_cast<std::size_t>(-1);
    struct Place {
        ElementRef element;
        std::size_t page;
        Kind kind;
    };

    /// Asks about the elements of a level and returns those of the next.
    std::vector<Place> belowOf(std::vector<Place> &level) {
        std::vector<Place> next;
        for (Place &place : level) {
            m_questions.ask(calls::role(place.element), [this, &place](const Reply &reply) {
                m_isAnswered = m_isAnswered || reply.isAnswered();
                place.kind.role = reply.as<Role>().value_or(Role::unknown);
                if (place.kind.role == Role::documentWeb && place.page == noPage) {
                    place.page = m_facts.pages.size();
                    m_facts.pages.emplace_back();
                    askAboutPage(place);
                }
            });
            m_questions.ask(calls::states(place.element), [this, &place](const Reply &reply) {
                const States states = place.kind.states = reply.as<States>().value_or(States());
                // Parts of an editor are editable too, but only the editor itself takes the focus.
                if (place.page != noPage && states.has(State::editable) && states.has(State::focusable)) {
                    askAboutField(place);
                }
            });
            m_questions.ask(calls::children(place.element),
                            [this, &place, &next](const Reply &reply) { addChildren(place, reply, next); });
        }
        // The answers raise further questions.
        while (!m_questions.isEmpty()) {
            m_facts.isWhole = m_questions.run(m_bus, m_deadline) && m_facts.isWhole;
        }
        return next;
    }

    void addChildren(const Place &place, const Reply &reply, std::vector<Place> &next) {
        for (ElementRef &child : reply.references(maxElements).value_or(std::vector<ElementRef>())) {
            if (m_seen.size() >= maxElements) {
                m_facts.isWhole = false;
            } else if (m_seen.insert(child).second) {
                next.push_back({std::move(child), place.page, {}});
            }
        }
    }

    void askAboutPage(const Place &place) {
        const std::size_t at = place.page;
        m_questions.ask(calls::extents(place.element),
                        [this, at](const Reply &reply) { m_facts.pages[at].frame = reply.extents(); });
        // Chromium gives its address under the first name, Firefox under the second.
        for (const char *key : {"URI", "DocURL"}) {
            m_questions.ask(calls::documentAttribute(place.element, key), [this, at](const Reply &reply) {
                const QString host = QUrl(reply.as<QString>().value_or(QString())).host();
                if (!host.isEmpty()) {
                    m_facts.pages[at].host = host;
                }
            });
        }
    }

    void askAboutField(Place &place) {
        m_questions.fetch(calls::attributes(place.element), place.kind.attributes);
        m_questions.ask(calls::extents(place.element), [this, &place](const Reply &reply) {
            m_facts.pages[place.page].fields.push_back({axRoleName(place.kind), reply.extents()});
        });
    }

    Connection &m_bus;
    Deadline m_deadline;
    Questions m_questions;
    std::set<ElementRef> m_seen;
    PagesFacts m_facts;
    bool m_isAnswered = false;
};

bool hasField(const PagesFacts &facts) {
    return std::ranges::any_of(facts.pages, [](const PageFacts &page) { return !page.fields.empty(); });
}

} // namespace

std::optional<PagesFacts> findPages(Connection &bus, const ElementRef &application) {
    const Deadline deadline = Clock::now() + longestSearch;
    const auto windows = bus.call(calls::children(application), deadline).references(maxWindows);
    if (!windows) {
        return std::nullopt;
    }
    for (const ElementRef &window : *windows) {
        bus.send(calls::attributes(window)); // wakes Chromium
    }
    PagesFacts found{.pages = {}, .isWhole = windows->empty()};
    bool hasAnswered = windows->empty();
    std::size_t elementsBefore = 0;
    for (bool isSettled = windows->empty(); !isSettled && bus.isOpen() && Clock::now() < deadline;) {
        PageWalk walk(bus, deadline);
        walk.run(*windows);
        hasAnswered = hasAnswered || walk.isAnswered();
        if (walk.facts().isWhole || !found.isWhole) { // a walk that was cut short may know less than an earlier one
            found = walk.facts();
        }
        // A page that is still being built grows from walk to walk.
        isSettled = walk.facts().isWhole && hasField(found) && walk.elements() == elementsBefore;
        elementsBefore = walk.elements();
        if (!isSettled) {
            bus.idle(std::min(deadline, Clock::now() + pauseBetweenLooks));
        }
    }
    return hasAnswered ? std::optional(std::move(found)) : std::nullopt;
}

} // namespace platform::desktop
