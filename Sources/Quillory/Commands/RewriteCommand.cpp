// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/RewriteCommand.h"

#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/Monitor/AnswerScreening.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/Text.h"

#include <QElapsedTimer>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <istream>
#include <limits>
#include <ostream>

using namespace Qt::StringLiterals;

namespace quillory {

namespace {

struct Order {
    QString draft;
    std::optional<Tone> tone;
    bool asJSON = false;
};

/// Why a rewrite is refused, as a sentence without its full stop.
struct Refusal {
    QString sentence;
    int status = exitStatus::failure;
};

QStringList toneNames() {
    QStringList names;
    for (const Tone tone : allTones) {
        names.append(u'"' + rawValue(tone) + u'"');
    }
    return names;
}

Tone toneNamed(const QString &name) {
    const auto found = std::ranges::find_if(
        allTones, [&](Tone tone) { return rawValue(tone).compare(name, Qt::CaseInsensitive) == 0; });
    if (found == std::end(allTones)) {
        throw Refusal{u"the tone must be one of "_s + toneNames().join(u", "_s), exitStatus::misuse};
    }
    return *found;
}

QString readDraft(std::istream &input) {
    std::optional<QString> draft = readText(input);
    if (!draft) {
        throw Refusal{u"the text must be UTF-8 and at most a megabyte long"_s};
    }
    return *std::move(draft);
}

Order orderFrom(const CommandArguments &given, std::istream &input) {
    Order order;
    order.asJSON = given.has(u"json"_s);
    if (given.has(u"tone"_s)) {
        order.tone = toneNamed(given.value(u"tone"_s));
    }
    const QStringList words = given.words();
    const bool isFromInput = words.isEmpty() || words == QStringList{u"-"_s};
    order.draft = isFromInput ? readDraft(input) : words.join(u' ');
    if (text::trimmed(order.draft).isEmpty()) {
        throw Refusal{u"there is no text to rewrite"_s};
    }
    return order;
}

/// The part of a growing answer that can be shown: without an end that may become one of the tags that are removed.
QString settled(const QString &soFar) {
    constexpr qsizetype longestTag = 15;
    const qsizetype open = soFar.lastIndexOf(u'<');
    const bool mayBeTag = open >= 0 && soFar.size() - open < longestTag && !soFar.sliced(open).contains(u'>');
    return cleanedAnswer(mayBeTag ? soFar.first(open) : soFar);
}

/// Shows an answer as it grows on a terminal, and ends its line even when an error cuts it off.
class Growing {
  public:
    explicit Growing(std::ostream &output) : m_output(output) {}
    ~Growing() {
        if (m_shown > 0) {
            m_output << std::endl;
        }
    }
    Growing(const Growing &) = delete;
    Growing &operator=(const Growing &) = delete;
    void show(const QString &answer) {
        m_output << text::printable(answer.sliced(std::min(m_shown, answer.size()))).toStdString() << std::flush;
        m_shown = answer.size();
    }

  private:
    std::ostream &m_output;
    qsizetype m_shown = 0;
};

/// The screened rewrite. Throws RewriteError and what the network throws.
QString rewriteOf(const Order &order, const OpenRouterClient &client, const QString &model,
                  const OpenRouterClient::OnChunk &onChunk) {
    const QString raw =
        client.stream(SuggestionKind::rewrite, order.draft, std::nullopt, model, onChunk, {}, order.tone);
    QString answer = cleanedAnswer(raw);
    const Verdict verdict = screen(SuggestionKind::rewrite, order.draft, answer);
    if (verdict.outcome == Verdict::Outcome::rejected) {
        throw RewriteError::badResponse(u"The model went off script: "_s + verdict.reason);
    }
    if (answer.isEmpty()) {
        throw RewriteError::badResponse(u"The model gave no answer"_s);
    }
    return answer;
}

void carryOut(const Order &order, const ModelAccess &access, const CommandStreams &streams) {
    const QString model = access.settings.store().string(settingsKey::model).value_or(defaultModel);
    QElapsedTimer clock;
    clock.start();
    const bool isShownGrowing = streams.outputIsTerminal && !order.asJSON;
    Growing growing(streams.output);
    const QString answer = rewriteOf(order, access.client, model, [&](const QString &soFar) {
        if (isShownGrowing) {
            growing.show(settled(soFar));
        }
    });
    if (order.asJSON) {
        const nlohmann::json document{{"rewrite", answer.toStdString()},
                                      {"model", model.toStdString()},
                                      {"seconds", static_cast<double>(clock.elapsed()) / 1e3}};
        streams.output << document.dump(2) << '\n';
    } else if (isShownGrowing) {
        growing.show(answer);
    } else {
        streams.output << answer.toStdString() << '\n';
    }
}

int fail(const CommandStreams &streams, QString sentence, int status) {
    sentence.chop(sentence.endsWith(u'.') ? 1 : 0);
    return complain(streams, text::printable(sentence), status);
}

int runRewrite(const CommandArguments &given, const CommandServices &services, const CommandStreams &streams) {
    try {
        carryOut(orderFrom(given, streams.input), *services.accessModel(), streams);
        return exitStatus::success;
    } catch (const Refusal &refusal) {
        return fail(streams, refusal.sentence, refusal.status);
    } catch (const std::exception &error) {
        return fail(streams, QString::fromUtf8(error.what()), exitStatus::failure);
    }
}

} // namespace

const Command &rewriteCommand() {
    static const Command command{
        .name = u"rewrite"_s,
        .forms = {{u"[TEXT]"_s, u"rewrite a text, or standard input"_s}},
        .options = {{u"tone"_s, u"One of %1; by default, the one in the settings."_s.arg(toneNames().join(u", ")),
                     u"TONE"_s},
                    {u"json"_s, u"Show the rewrite, the model and the seconds taken as JSON."_s}},
        .mostWords = std::numeric_limits<qsizetype>::max(),
        .run = runRewrite};
    return command;
}

} // namespace quillory
