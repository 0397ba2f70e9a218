// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/ProgramExamination.h"

#include "Platform/Platform.h"
#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/RewriteError.h"
#include "Quillory/Settings/ApiKey.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/Text.h"

namespace quillory {

namespace {

void examineService(ProgramFacts &facts, const std::stop_token &stop) {
    constexpr std::chrono::seconds patience{8};
    const auto chosen = platform::current().process.environment(QStringLiteral("QUILLORY_MODEL_SERVICE"));
    facts.isServiceChosen = chosen && !chosen->isEmpty();
    try {
        platform::URLRequest request;
        request.url = OpenRouterClient::ofCurrent().serviceURL();
        request.timeout = patience;
        facts.serviceHost = request.url.host();
        // Any answer will do: the path is for requests with a key, and this one has none.
        if (!platform::current().urlSession.data(request, stop).statusCode) {
            facts.serviceFault = facts.serviceHost + QStringLiteral(" gives an answer that is not HTTP");
        }
    } catch (const RewriteError &error) {
        facts.serviceFault = error.description();
    } catch (const platform::URLError &error) {
        facts.serviceFault =
            facts.serviceHost + QStringLiteral(" cannot be reached: ") + QString::fromUtf8(error.what());
    } catch (const platform::CancellationError &) {
        facts.serviceFault = QStringLiteral("was not waited for");
    }
}

} // namespace

ProgramFacts examineProgram(const std::stop_token &stop) {
    ProgramFacts facts;
    facts.version = QStringLiteral(QUILLORY_VERSION);
    const QString key = text::trimmed(AppSettings::shared().apiKey());
    facts.hasKey = !key.isEmpty();
    facts.isKeyKept = AppSettings::shared().isKeySet();
    // A key with a line break in it is never sent.
    if (facts.hasKey && enteredKey(key).key != key) {
        facts.keyFault = QStringLiteral("the key holds a space, a line break or a character that no key has");
    }
    facts.areSuggestionsOn = AppSettings::shared().store().boolean(settingsKey::enabled);
    examineService(facts, stop);
    return facts;
}

} // namespace quillory
