// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Page/TextPlaces.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
constexpr int placeAttempts = 3;
constexpr auto placePause = 12ms;
constexpr auto placePatience = 1s;

bool isEmpty(const std::optional<Rect> &frame) {
    return frame && frame->width <= 0 && frame->height <= 0;
}

// The frame around both.
void addFrame(std::optional<Rect> &frame, const std::optional<Rect> &other) {
    if (!frame || isEmpty(frame) || !other || isEmpty(other)) {
        frame = !frame || isEmpty(frame) ? (other ? other : frame) : frame;
        return;
    }
    const double x = std::min(frame->x, other->x);
    const double y = std::min(frame->y, other->y);
    frame = {x, y, std::max(frame->maxX(), other->maxX()) - x, std::max(frame->maxY(), other->maxY()) - y};
}

void askFrames(const Asking &asking, const std::vector<PageWalk::Step> &steps, const std::vector<std::size_t> &which,
               std::vector<AXSubtreeNode> &items) {
    Questions frames;
    for (const auto i : which) {
        auto &frame = items[i].frame;
        if (steps[i].run == nullptr) {
            frames.ask(calls::extents(steps[i].ref), [&frame](const Reply &reply) { frame = reply.extents(); });
            continue;
        }
        for (const auto &range : steps[i].run->measured) {
            frames.ask(calls::rangeExtents(steps[i].ref, range.from, range.to),
                       [&frame](const Reply &reply) { addFrame(frame, reply.extents()); });
        }
    }
    frames.run(asking);
}
} // namespace

// Firefox finds out where a text stands only once it is asked, and until then gives it a frame without extent. Texts
// for which it goes on doing so get their element's frame.
bool TextPlaces::read(const Asking &asking, const std::vector<PageWalk::Step> &steps,
                      std::vector<AXSubtreeNode> &items) {
    std::vector<std::size_t> which;
    for (std::size_t i = 0; i < items.size(); ++i) {
        // Many blank texts stand between the words of a page; their places do not matter.
        if (items[i].value && !items[i].value->trimmed().isEmpty()) {
            which.push_back(i);
        }
    }
    askFrames(asking, steps, which, items);
    const auto keepUnplaced = [&] {
        std::erase_if(which, [&](std::size_t i) { return steps[i].run == nullptr || !isEmpty(items[i].frame); });
        return !which.empty();
    };
    for (int attempt = 0; keepUnplaced() && attempt < placeAttempts; ++attempt) {
        asking.giveWay();
        asking.connection.idle(std::min(Clock::now() + placePause, asking.deadline));
        asking.giveWay();
        askFrames(asking, steps, which, items);
    }
    if (which.empty()) {
        m_unplacedSince.reset();
        return true;
    }
    m_unplacedSince = m_unplacedSince.value_or(Clock::now());
    if (Clock::now() - *m_unplacedSince < placePatience) {
        return false;
    }
    Questions frames;
    for (const auto i : which) {
        frames.ask(calls::extents(steps[i].ref), [&items, i](const Reply &reply) { items[i].frame = reply.extents(); });
    }
    frames.run(asking);
    return true;
}

} // namespace platform::desktop::atspi
