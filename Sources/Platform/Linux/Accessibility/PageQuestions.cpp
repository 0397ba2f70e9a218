// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/PageQuestions.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
constexpr auto subtreeWait = 200ms;
// What is left of a display's frame when a page has changed since it was last read.
constexpr auto pageWait = 10ms;
constexpr auto oldestCopy = 3s;
} // namespace

// For a page that has not changed the mirror answers; one that has changed is waited for, but not for long.
std::shared_ptr<const PageCopy> PageQuestions::copy(const PageName &page, AXFreshness freshness) {
    const auto askedAt = Clock::now();
    auto mirrored = m_reader.board().page();
    const auto job = request(page, freshness.notBefore.value_or(Clock::time_point()));
    const bool isGood =
        freshness.notBefore ? mirrored.wasReadSince(page, *freshness.notBefore) : mirrored.isFresh(page, askedAt);
    if (!isGood) {
        m_reader.await(*job, freshness.notBefore ? subtreeWait : pageWait);
        mirrored = m_reader.board().page();
    }
    const auto oldest = freshness.notBefore.value_or(oldestUseful(page, mirrored, askedAt));
    return mirrored.wasReadSince(page, oldest) ? mirrored.copy : nullptr;
}

// A fresh copy will do, however old it is.
Clock::time_point PageQuestions::oldestUseful(const PageName &page, const MirroredPage &mirrored,
                                              Clock::time_point askedAt) const {
    if (mirrored.isFresh(page, askedAt)) {
        return {};
    }
    return std::max(askedAt - oldestCopy, m_prepared == page ? m_preparedAt : Clock::time_point());
}

void PageQuestions::prepare(const PageName &page, AXFreshness freshness) {
    if (freshness.notBefore) {
        m_prepared = page;
        m_preparedAt = *freshness.notBefore;
    }
    request(page, {});
}

// Also tells the mirror that the page is wanted. One request at a time is enough, except when the page must be read
// anew.
PageQuestions::Job PageQuestions::request(const PageName &page, Clock::time_point notBefore) {
    const bool isAskedFor = m_request != nullptr && !m_request->isFinished() && m_requested == page;
    if (!isAskedFor || notBefore != Clock::time_point()) {
        m_requested = page;
        m_request = m_reader.start(
            [page, notBefore](Session &session) {
                if (session.mirror() != nullptr) {
                    session.mirror()->refresh(page, notBefore);
                }
                return true;
            },
            Reader::Length::longer);
    }
    return m_request;
}

} // namespace platform::desktop::atspi
