// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Desktop/PageSearch.h"

#include "Platform/Linux/Accessibility/Questions.h"

#include <QUrl>

namespace platform::desktop {

namespace {
using namespace atspi;
using namespace std::chrono_literals;
constexpr auto longestSearch = 3s;
constexpr auto pauseBetweenLooks = 200ms;
constexpr std::size_t maxWindows = 100;
constexpr std::size_t maxElements = 8000;

/// A walk level by level through everything that an application shows.
class PageWalk {
  public:
    PageWalk(Connection &bus, Deadline deadline) : m_bus(bus), m_deadline(deadline) {}

    std::vector<PageFacts> run(const std::vector<ElementRef> &windows) {
        for (const ElementRef &window : windows) {
            m_level.push_back({window, noPage});
        }
        while (!m_level.empty() && Clock::now() < m_deadline) {
            lookAtLevel();
        }
        return std::move(m_pages);
    }

  private:
    static constexpr std::size_t noPage = static_cast<std::size_t>(-1);
    struct Place {
        ElementRef element;
        std::size_t page;
    };

    void lookAtLevel() {
        std::vector<Place> next;
        std::vector<std::pair<ElementRef, std::size_t>> documents;
        const std::vector<Place> level = std::exchange(m_level, {});
        for (const Place &place : level) {
            auto page = std::make_shared<std::size_t>(place.page);
            m_questions.ask(calls::role(place.element), [this, page, &documents, &place](const Reply &reply) {
                const auto role = static_cast<Role>(reply.number().value_or(0));
                if (role == Role::documentWeb && *page == noPage) {
                    *page = m_pages.size();
                    m_pages.emplace_back();
                    documents.emplace_back(place.element, *page);
                }
                m_role = role;
            });
            m_questions.ask(calls::states(place.element), [this, page](const Reply &reply) {
                const States states = reply.states().value_or(States());
                if (*page != noPage && m_role == Role::entry && states.has(State::editable)) {
                    ++m_pages[*page].textBoxes;
                }
            });
            m_questions.ask(calls::children(place.element), [this, page, &next](const Reply &reply) {
                for (ElementRef &child : reply.references(maxElements).value_or(std::vector<ElementRef>())) {
                    if (m_seen.size() < maxElements && m_seen.insert(child).second) {
                        next.push_back({std::move(child), *page});
                    }
                }
            });
        }
        m_questions.run(m_bus, m_deadline);
        askAddresses(documents);
        m_level = std::move(next);
    }

    void askAddresses(const std::vector<std::pair<ElementRef, std::size_t>> &documents) {
        for (const auto &[document, page] : documents) {
            // Chromium gives it under the first name, Firefox under the second.
            for (const char *key : {"URI", "DocURL"}) {
                m_questions.ask(calls::withText(document, documentInterface, "GetAttributeValue", key),
                                [this, at = page](const Reply &reply) {
                                    const QString host = QUrl(reply.string().value_or(QString())).host();
                                    if (!host.isEmpty()) {
                                        m_pages[at].host = host;
                                    }
                                });
            }
        }
        m_questions.run(m_bus, m_deadline);
    }

    Connection &m_bus;
    Deadline m_deadline;
    Questions m_questions;
    std::vector<Place> m_level;
    std::set<ElementRef> m_seen;
    std::vector<PageFacts> m_pages;
    /// Of the element whose answers are being taken.
    Role m_role = Role::unknown;
};

} // namespace

std::optional<std::vector<PageFacts>> findPages(Connection &bus, const ElementRef &application) {
    const Deadline deadline = Clock::now() + longestSearch;
    const auto windows = bus.call(calls::children(application), deadline).references(maxWindows);
    if (!windows) {
        return std::nullopt;
    }
    for (const ElementRef &window : *windows) {
        bus.send(calls::attributes(window)); // wakes Chromium
    }
    std::vector<PageFacts> pages;
    while (Clock::now() < deadline) {
        pages = PageWalk(bus, deadline).run(*windows);
        const bool hasBox = std::ranges::any_of(pages, [](const PageFacts &page) { return page.textBoxes > 0; });
        if (hasBox || windows->empty()) {
            break;
        }
        bus.idle(std::min(deadline, Clock::now() + pauseBetweenLooks));
    }
    return bus.isSilent(application.bus) ? std::nullopt : std::optional(std::move(pages));
}

} // namespace platform::desktop
