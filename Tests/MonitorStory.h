// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Monitor/MonitorAssembly.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QRegularExpression>

#include <gmock/gmock.h>

#include <algorithm>

namespace quillory::test {

using namespace Qt::StringLiterals;

inline QString text(const char *utf8) {
    return QString::fromUtf8(utf8);
}

constexpr qint32 browserPid = 1;

// A user in front of the web client, with the program running.
struct MonitorStory : testing::Test {
    SimulatedDesktop desktop;
    SimulatedCards cards;
    Node browser = desktop.applications.launch({browserPid, u"org.chromium.Chromium"_s, u"Chromium"_s}, u"WhatsApp"_s);
    Node page = browser->add(platform::axRole::webArea);
    Node box = page->add(platform::axRole::textArea, {300, 800, 400, 40});
    std::unique_ptr<MonitorAssembly> program = std::make_unique<MonitorAssembly>(desktop.services(), cards.maker());

    void SetUp() override {
        desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"key"_s);
        page->set(platform::AXAttribute::url, QUrl(u"https://web.whatsapp.com/"_s));
        box->setValue({});
        focus(box);
    }
    void start() {
        program->monitor.start();
        desktop.advance(100);
        m_logRead = desktop.log().size();
    }

    void focus(const Node &node) { desktop.applications.focused = node; }
    // The text is there by the next tick, which the given time starts with.
    void type(const QString &value, int thenMilliseconds) {
        box->setValue(value);
        desktop.advance(100 + thenMilliseconds);
    }
    // What was logged since this was last asked.
    QStringList newLog() {
        QStringList lines = desktop.log().mid(m_logRead);
        m_logRead += lines.size();
        return lines;
    }
    bool runUntil(const std::function<bool()> &condition) { return desktop.mainQueue.runUntil(condition); }
    bool runUntilLogged(const QString &start) {
        return runUntil([&] {
            const QStringList lines = desktop.log().mid(m_logRead);
            return std::any_of(lines.begin(), lines.end(), [&](const QString &line) { return line.startsWith(start); });
        });
    }
    bool runUntilShown(int card, const QString &cardText) {
        return runUntil([&] { return card < cards.shown.size() && cards.shown[card].text == cardText; });
    }
    void finish(int request, const QString &answer) {
        const QString label = modelName(request);
        desktop.urlSession.exchange(request)->answer({answer});
        ASSERT_TRUE(runUntilLogged(label + u" complete"_s));
    }
    QString modelName(int request) {
        const auto model = desktop.urlSession.exchange(request)->json()[u"model"_s].toString();
        return model.startsWith(u"google"_s) ? u"Gemini 2.5 Flash Lite"_s : u"Claude Haiku 4.5"_s;
    }
    // How often models were asked; the requests themselves come from threads of their own, a little later.
    qsizetype requests() {
        static const QRegularExpression asked(u"^(prefetch started|rewrite requested|reply \\()"_s);
        return desktop.log().filter(asked).size();
    }
    bool panelVisible() { return desktop.panelWindows.visible; }

  private:
    qsizetype m_logRead = 0;
};

} // namespace quillory::test
