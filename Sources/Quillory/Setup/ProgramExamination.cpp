// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/ProgramExamination.h"

#include "Quillory/RewriteError.h"
#include "Quillory/Settings/ApiKey.h"
#include "Quillory/Text.h"

namespace quillory {

namespace {

void examineService(ProgramFacts &facts, const ModelAccess &access, const std::stop_token &stop) {
    constexpr std::chrono::seconds patience{8};
    const auto chosen = access.process.environment(QStringLiteral("QUILLORY_MODEL_SERVICE"));
    facts.isServiceChosen = chosen && !chosen->isEmpty();
    try {
        platform::URLRequest request;
        request.url = access.client.serviceURL();
        request.timeout = patience;
        facts.serviceHost = request.url.host();
        // Any HTTP answer will do: without a key, the service refuses the request.
        if (!access.session.data(request, stop).statusCode) {
            facts.serviceFault = facts.serviceHost + QStringLiteral(" does not answer with HTTP");
        }
    } catch (const RewriteError &error) {
        facts.serviceFault = error.description();
    } catch (const platform::URLError &error) {
        facts.serviceFault =
            facts.serviceHost + QStringLiteral(" cannot be reached: ") + QString::fromUtf8(error.what());
    } catch (const platform::CancellationError &) {
        facts.serviceFault = QStringLiteral("the check was stopped");
    }
}

} // namespace

ProgramFacts examineProgram(const ModelAccess &access, const std::stop_token &stop) {
    ProgramFacts facts;
    facts.version = QStringLiteral(QUILLORY_VERSION);
    const QString key = text::trimmed(access.settings.apiKey());
    facts.hasKey = !key.isEmpty();
    facts.isKeyKept = access.settings.isKeySet();
    // Such a key would never be sent.
    if (facts.hasKey && enteredKey(key).key != key) {
        facts.keyFault = QStringLiteral("the key contains a space, a line break or another character that no key has");
    }
    facts.areSuggestionsOn = access.settings.store().boolean(settingsKey::enabled);
    examineService(facts, access, stop);
    return facts;
}

} // namespace quillory
