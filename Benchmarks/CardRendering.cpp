// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What it costs to show an answer of 2,000 characters as it streams in, with cards that change in place and with cards
// that are made anew for each update: CPU time of the main thread, painting included.
#include "ClockTime.h"
#include "Quillory/UI/Card/SuggestionStackView.h"

#include <QApplication>

#include <cstdio>

namespace {

using quillory::ui::SuggestionStackView;

constexpr int updates = 80;

void render(SuggestionStackView &host, const QString &text) {
    host.setRootView(
        {{QStringLiteral("Suggested rewrite"), text, false, std::nullopt, false}}, 420, [](int) {}, [] {});
    static_cast<QWidget *>(host.view())->show();
    QApplication::processEvents();
}

template <class Render> double perUpdate(const QString &answer, Render renderOne) {
    const double start = quillory::bench::milliseconds(CLOCK_THREAD_CPUTIME_ID);
    for (int i = 1; i <= updates; ++i) {
        renderOne(answer.left(answer.size() * i / updates));
    }
    return (quillory::bench::milliseconds(CLOCK_THREAD_CPUTIME_ID) - start) / updates;
}

} // namespace

int main(int argc, char **argv) {
    const QApplication application(argc, argv);
    const QString sentence = QStringLiteral("Thank you for reaching out. The blue dress in size M is in stock.\n");
    const QString answer = sentence.repeated(2000 / sentence.size() + 1).left(2000);
    SuggestionStackView host;
    render(host, answer);
    const double inPlace = perUpdate(answer, [&](const QString &text) { render(host, text); });
    const double onePiece =
        perUpdate(QString(answer).replace(u'\n', u' '), [&](const QString &text) { render(host, text); });
    const double afresh = perUpdate(answer, [](const QString &text) {
        SuggestionStackView other;
        render(other, text);
    });
    std::printf("in place            %6.2f ms\nin place, no breaks %6.2f ms\nafresh              %6.2f ms\n", inPlace,
                onePiece, afresh);
    std::printf("afresh / in place   %6.1f\n", afresh / inPlace);
    return 0;
}
