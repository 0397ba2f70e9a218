// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What a bulk read asks of single elements.
#include "Platform/Linux/Accessibility/Page/SubtreeReader.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
constexpr int placeAttempts = 3;
constexpr auto placePause = 12ms;
constexpr auto placePatience = 1s;

// Whether it is one by its role; the states may yet say that it is a field.
bool mayBeStaticText(const Kind &kind) {
    const bool isText = kind.role == Role::staticText || kind.role == Role::label || kind.role == Role::text;
    return isText && !kind.hasChildren;
}

bool namesDependOnStates(Role role) {
    return role == Role::text || role == Role::entry || role == Role::comboBox;
}
} // namespace

// Text is asked for a round later than the role, when it cannot be a password any more; that is along with the
// questions about the level below. What is not answered in time stays unknown.
void SubtreeReader::askUnknown(const Asking &asking, const Request &request, Tree &tree,
                               const std::vector<ElementRef> &unknown) {
    Questions questions;
    for (const auto &ref : unknown) {
        auto &info = tree[ref];
        if (std::exchange(info.isTakenForLeaf, false)) {
            info.isKnown = false;
            info.hasKnownChildren = false;
        }
        if (asking.connection.isSilent(ref.bus)) {
            // What a hung application shows inside the page is left out of it; the page's own application may answer
            // later.
            info.isKnown = ref.bus != request.root.bus;
            info.isGone = info.isKnown;
            continue;
        }
        if (info.isKnown && request.foldsText && !isSecret(info.kind)) {
            askFolded(questions, ref, info);
        }
        if (!info.isKnown) {
            questions.ask(calls::role(ref), [&info](const Reply &reply) {
                info.isKnown = reply.isAnswered();
                info.kind.role = static_cast<Role>(reply.number().value_or(static_cast<std::uint32_t>(Role::unknown)));
                info.isGone = reply.isError();
            });
        }
        if (!info.hasKnownChildren) {
            const auto most = static_cast<std::size_t>(request.limits.maxNodes);
            questions.ask(calls::children(ref), [&info, most](const Reply &reply) {
                info.hasKnownChildren = reply.isAnswered();
                info.children = reply.references(most).value_or(std::vector<ElementRef>());
                info.kind.hasChildren = !info.children.empty();
            });
        }
    }
    questions.run(asking);
}

// A text, and then style after style.
void SubtreeReader::askFolded(Questions &questions, const ElementRef &ref, Info &info) {
    if (!info.folded) {
        questions.ask(calls::text(ref, 0, -1), [&info](const Reply &reply) {
            if (!reply.isAnswered()) {
                return;
            }
            auto former = std::exchange(info.former, std::nullopt);
            auto text = reply.string().value_or(QString());
            if (former && former->text() == text) {
                info.folded = std::move(former);
                return;
            }
            info.hasKnownChildren = info.hasKnownChildren && !former;
            info.folded.emplace(text);
        });
    } else if (const auto offset = info.folded->unknownStyle()) {
        questions.ask(calls::attributeRun(ref, *offset), [&info](const Reply &reply) {
            if (reply.isAnswered()) {
                const auto [style, to] = reply.attributeRun().value_or(std::pair(Attributes(), -1));
                const auto size = style.find("size");
                info.folded->addStyle(to, size != style.end() ? size->second : std::string());
            }
        });
    }
}

namespace {
// What the names of some roles depend on, for the few elements of these roles.
void askDetails(Questions &questions, const ElementRef &ref, Kind &kind, bool &isAnswered) {
    questions.ask(calls::states(ref), [&kind, &isAnswered](const Reply &reply) {
        kind.states = reply.states().value_or(States());
        isAnswered = reply.isAnswered();
    });
    questions.ask(calls::attributes(ref),
                  [&kind](const Reply &reply) { kind.attributes = reply.attributes().value_or(Attributes()); });
}

bool isEmpty(const std::optional<PixelRect> &frame) {
    return frame && frame->width <= 0 && frame->height <= 0;
}

// The frame around both.
void addFrame(std::optional<PixelRect> &frame, const std::optional<PixelRect> &other) {
    if (!frame || isEmpty(frame) || !other || isEmpty(other)) {
        frame = !frame || isEmpty(frame) ? (other ? other : frame) : frame;
        return;
    }
    const int right = std::max(frame->x + frame->width, other->x + other->width);
    const int bottom = std::max(frame->y + frame->height, other->y + other->height);
    frame->x = std::min(frame->x, other->x);
    frame->y = std::min(frame->y, other->y);
    frame->width = right - frame->x;
    frame->height = bottom - frame->y;
}
} // namespace

void SubtreeReader::askTexts(const Asking &asking, Tree &tree, const std::vector<Step> &steps) {
    Questions texts;
    for (const auto &step : steps) {
        auto &info = tree[step.ref];
        if (step.run != nullptr || (info.text && info.hasKnownDetails)) {
            continue;
        }
        if (namesDependOnStates(info.kind.role)) {
            askDetails(texts, step.ref, info.kind, info.hasKnownDetails);
        }
        if (mayBeStaticText(info.kind) && !info.text) {
            texts.ask(calls::text(step.ref, 0, -1), [&info](const Reply &reply) {
                info.text = reply.isAnswered() ? std::optional(reply.string().value_or(QString())) : std::nullopt;
            });
        }
    }
    texts.run(asking);
    // The labels of some toolkits have a name alone.
    for (const auto &step : steps) {
        auto &info = tree[step.ref];
        if (info.text && info.text->isEmpty()) {
            texts.ask(calls::name(step.ref),
                      [&info](const Reply &reply) { info.text = reply.stringProperty().value_or(QString()); });
        }
    }
    texts.run(asking);
}

// What was taken for a leaf but has a stand-in for a child in its text.
std::vector<ElementRef> SubtreeReader::leavesWithChildren(const Tree &tree, const std::vector<Step> &steps) {
    std::vector<ElementRef> found;
    for (const auto &step : steps) {
        const auto &info = tree.at(step.ref);
        if (info.isTakenForLeaf && info.text && info.text->contains(QChar(QChar::ObjectReplacementCharacter))) {
            found.push_back(step.ref);
        }
    }
    return found;
}

std::vector<SubtreeItem> SubtreeReader::finish(const Asking &asking, Tree &tree, const std::vector<Step> &steps) {
    std::vector<SubtreeItem> items(steps.size());
    std::vector<std::size_t> shown;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        auto &item = items[i];
        const auto &step = steps[i];
        item.depth = step.depth;
        item.role = step.run != nullptr ? QString(axRole::staticText) : axRoleName(tree[step.ref].kind);
        if (step.run != nullptr) {
            item.value = step.run->text;
        } else if (item.role == axRole::staticText) {
            item.value = tree[step.ref].text;
        }
        // Between the words of a page stand many blank texts, whose places are nobody's concern.
        if (item.value && !item.value->trimmed().isEmpty()) {
            shown.push_back(i);
        }
    }
    askFrames(asking, steps, shown, items);
    const bool isPlaced = waitForPlaces(asking, steps, shown, items);
    return isPlaced && Clock::now() < asking.deadline ? items : std::vector<SubtreeItem>();
}

void SubtreeReader::askFrames(const Asking &asking, const std::vector<Step> &steps,
                              const std::vector<std::size_t> &which, std::vector<SubtreeItem> &items) {
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

// Firefox finds out where texts stand only when it is asked, and says meanwhile that they stand nowhere, without
// extent. Those of which it says so for long get their element's frame. False if the places are still to come.
bool SubtreeReader::waitForPlaces(const Asking &asking, const std::vector<Step> &steps, std::vector<std::size_t> which,
                                  std::vector<SubtreeItem> &items) {
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
