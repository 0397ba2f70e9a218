// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/InspectCommand.h"

#include "Quillory/Commands/Inspection.h"
#include "Quillory/Field/KnownPrograms.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

using namespace Qt::StringLiterals;

namespace quillory {

namespace {
using namespace std::chrono_literals;
using Evidence = ChatContext::Recognition::Evidence;

constexpr int longestWait = 3600;
/// How long to wait for the desktop's first focus event, and for a page that builds its tree only when it is asked.
constexpr auto longestSettling = 3s;
constexpr auto pause = 100ms;

struct InspectOrder {
    bool asJSON = false;
    std::optional<std::chrono::seconds> wait;
};

/// Absent when the time to wait is not a valid number of seconds.
std::optional<InspectOrder> inspectOrder(const CommandArguments &given) {
    InspectOrder order{.asJSON = given.has(u"json"_s), .wait = {}};
    if (given.has(u"wait"_s)) {
        bool isNumber = false;
        const int seconds = given.value(u"wait"_s).toInt(&isNumber);
        if (!isNumber || seconds < 0 || seconds > longestWait) {
            return std::nullopt;
        }
        order.wait = std::chrono::seconds(seconds);
    }
    return order;
}

bool isMessageBox(const Inspection &seen) {
    return seen.focus && seen.focus->field.isChat && !seen.focus->field.isBrowserUI;
}

/// Whether another look would show nothing more.
bool isSettled(const Inspection &seen) {
    return isMessageBox(seen) ? seen.focus->field.conversation.has_value() : seen.focus.has_value();
}

Inspection look(CommandDesktop &desktop, const std::optional<std::chrono::seconds> &wait) {
    auto deadline = desktop.now() + wait.value_or(0s); // not a number of looks: one can take longer than a pause
    Inspection seen = inspectFocus(desktop.services());
    while (desktop.now() < deadline && !isMessageBox(seen)) {
        desktop.pass(pause);
        seen = inspectFocus(desktop.services());
    }
    // Look a second time even then: right after it gets the focus, a page may give only half of what it holds.
    deadline = desktop.now() + longestSettling;
    do {
        desktop.pass(pause);
        seen = inspectFocus(desktop.services());
    } while (desktop.now() < deadline && !isSettled(seen));
    const AppSettings settings(desktop.services().userDefaults, desktop.services().process);
    seen.hasKey = !text::trimmed(settings.apiKey()).isEmpty();
    if (seen.plan.kind) {
        const OpenRouterClient client(settings, desktop.services().process, desktop.services().urlSession);
        seen.serviceURL = client.serviceURL();
    }
    return seen;
}

/// Text from a page may hold control characters.
std::string printable(const QString &text) {
    return text::printable(text).toStdString();
}

std::string indented(const QString &text) {
    return "    " + printable(QString(text).replace(u'\n', u"\n    "_s)) + '\n';
}

std::string yesNo(bool value) {
    return value ? "yes" : "no";
}

QString because(const ChatContext::Recognition &recognition) {
    const QString judgedBy = u'"' + recognition.judgedBy + u'"';
    switch (recognition.evidence) {
    case Evidence::chatProgram:
        return u"the program is known as %1"_s.arg(judgedBy);
    case Evidence::otherProgram:
        return recognition.judgedBy.isEmpty()
                   ? u"the program is not known as a browser or a chat program"_s
                   : u"the program is known as %1, which is neither a browser nor a chat program"_s.arg(judgedBy);
    case Evidence::pageAddress:
        return u"the page comes from the host %1"_s.arg(judgedBy);
    case Evidence::windowTitle:
        break;
    }
    return u"the page gives no address, and the window's title is %1"_s.arg(judgedBy);
}

QString placeOf(const std::optional<platform::Rect> &frame) {
    return frame ? u"%1 by %2 points at %3, %4 from the top left of the screen"_s.arg(frame->width)
                       .arg(frame->height)
                       .arg(frame->x)
                       .arg(frame->y)
                 : u"unknown"_s;
}

bool isPastedInto(const InspectedElement &focus) {
    return !focus.canWriteValue || isBrowser(focus.bundleIdentifier);
}

void writeFocus(std::ostream &output, const InspectedElement &focus) {
    const auto row = [&output](const char *name, const std::string &value) {
        output << "  " << name << std::string(18 - std::string_view(name).size(), ' ') << value << '\n';
    };
    output << "Focused element\n";
    row("program", printable(focus.application) + " (process " + std::to_string(focus.pid) + ", known as " +
                       (focus.bundleIdentifier.isEmpty() ? "nothing" : printable(focus.bundleIdentifier)) + ")");
    row("window", printable(focus.windowTitle));
    row("role", printable(focus.role));
    row("frame", placeOf(focus.frame).toStdString());
    row("text field", yesNo(focus.field.isTextElement));
    row("browser's own", focus.field.isBrowserUI ? std::string("yes, such as its address bar") : yesNo(false));
    row("can be written", std::string("text ") + yesNo(focus.canWriteValue) + ", caret " + yesNo(focus.canPlaceCaret) +
                              (focus.field.isTextElement && isPastedInto(focus) ? " (an answer is pasted)" : ""));
    row("WhatsApp", yesNo(focus.recognition.isChat) + ": " + printable(because(focus.recognition)));
}

void writeConversation(std::ostream &output, const FieldSituation &field) {
    if (!field.conversation) {
        output << "\nConversation: none can be read\n";
        return;
    }
    const auto lines = field.conversation->count(u'\n') + 1;
    output << "\nConversation around the box, as Quillory reads it (" << lines
           << (lines == 1 ? " line)\n" : " lines)\n") << indented(*field.conversation);
}

void writeRequest(std::ostream &output, const Inspection &seen) {
    if (!seen.plan.kind) {
        output << "\nWhat would be sent: nothing, because " << seen.plan.whyNot.toStdString() << ".\n";
        return;
    }
    output << "\nWhat would be sent: a request for a "
           << (*seen.plan.kind == SuggestionKind::reply ? "reply" : "rewrite") << ", to "
           << seen.serviceURL.toString().toStdString() << '\n';
    for (const ModelChoice &model : seen.models) {
        output << "  model " << printable(model.id) << '\n';
    }
    output << "  key   " << (seen.hasKey ? "set, not shown" : "none, so nothing is sent until there is one") << '\n';
    for (const auto &[role, content] : seen.messages) {
        output << "  message from \"" << role.toStdString() << "\"\n" << indented(content);
    }
}

void writeReport(std::ostream &output, const Inspection &seen) {
    if (!seen.isTrusted) {
        output
            << "Accessibility is off or does not answer, so Quillory can see nothing. For more, run: quillory doctor\n";
        return;
    }
    if (!seen.focus) {
        output << "Quillory sees nothing that has the keyboard focus.\n";
        return;
    }
    writeFocus(output, *seen.focus);
    if (isMessageBox(seen)) {
        writeConversation(output, seen.focus->field);
    }
    writeRequest(output, seen);
    output << "\nNothing was sent.\n";
}

nlohmann::json valueOf(const std::optional<QString> &text) {
    return text ? nlohmann::json(text->toStdString()) : nlohmann::json();
}

nlohmann::json valueOf(const InspectedElement &focus) {
    nlohmann::json frame;
    if (focus.frame) {
        frame = {{"x", focus.frame->x},
                 {"y", focus.frame->y},
                 {"width", focus.frame->width},
                 {"height", focus.frame->height}};
    }
    return {{"process", focus.pid},
            {"application", focus.application.toStdString()},
            {"bundleIdentifier", focus.bundleIdentifier.toStdString()},
            {"windowTitle", focus.windowTitle.toStdString()},
            {"role", focus.role.toStdString()},
            {"frame", std::move(frame)},
            {"textElement", focus.field.isTextElement},
            {"browserUI", focus.field.isBrowserUI},
            {"settable", {{"AXValue", focus.canWriteValue}, {"AXSelectedTextRange", focus.canPlaceCaret}}},
            {"chat", focus.recognition.isChat},
            {"because", because(focus.recognition).toStdString()},
            {"value", valueOf(focus.field.value)},
            {"conversation", valueOf(focus.field.conversation)}};
}

nlohmann::json requestValue(const Inspection &seen) {
    if (!seen.plan.kind) {
        return {};
    }
    nlohmann::json models = nlohmann::json::array();
    for (const ModelChoice &model : seen.models) {
        models.push_back(model.id.toStdString());
    }
    nlohmann::json messages = nlohmann::json::array();
    for (const auto &[role, content] : seen.messages) {
        messages.push_back({{"role", role.toStdString()}, {"content", content.toStdString()}});
    }
    return {{"kind", *seen.plan.kind == SuggestionKind::reply ? "reply" : "rewrite"},
            {"url", seen.serviceURL.toString().toStdString()},
            {"models", std::move(models)},
            {"messages", std::move(messages)}};
}

void writeJSON(std::ostream &output, const Inspection &seen) {
    const nlohmann::json document{{"accessibility", seen.isTrusted},
                                  {"focus", seen.focus ? valueOf(*seen.focus) : nlohmann::json()},
                                  {"request", requestValue(seen)},
                                  {"whyNoRequest", seen.plan.whyNot.toStdString()},
                                  {"keySet", seen.hasKey}};
    output << document.dump(2) << '\n';
}

int runInspect(const CommandArguments &given, const CommandServices &services, const CommandStreams &streams) {
    const auto order = inspectOrder(given);
    if (!order) {
        return given.refuse(u"the time to wait must be a number of seconds, at most 3600"_s);
    }
    const auto desktop = services.openDesktop();
    if (!desktop) {
        return complain(streams, u"no X display can be reached, so there is nothing to look at"_s, exitStatus::failure);
    }
    if (order->wait) {
        streams.errors << "Click into the message box now." << std::endl;
    }
    try {
        const Inspection seen = look(*desktop, order->wait);
        order->asJSON ? writeJSON(streams.output, seen) : writeReport(streams.output, seen);
        if (!isMessageBox(seen) && !order->wait) {
            streams.errors << "\nThis is what has the focus now. To inspect a message box instead, run\n"
                              "quillory inspect --wait 20 and click into the box.\n";
        }
        return isMessageBox(seen) ? exitStatus::success : exitStatus::failure;
    } catch (const RewriteError &error) {
        streams.errors << "quillory: " << error.what() << '\n';
        return exitStatus::failure;
    }
}

} // namespace

const Command &inspectCommand() {
    static const Command command{
        .name = u"inspect"_s,
        .forms = {{{}, u"show what Quillory sees of the focused message box, and what it would send"_s}},
        .options = {{u"json"_s, u"Show the result as JSON."_s},
                    {u"wait"_s, u"Wait up to this long for a message box to get the focus."_s, u"SECONDS"_s}},
        .run = runInspect};
    return command;
}

} // namespace quillory
