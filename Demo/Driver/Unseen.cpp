// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Driver/Demo.h"
#include "Driver/Tours.h"
#include "RealDesktop/RealDesktop.h"

#include <QDir>

#include <cstdlib>
#include <iostream>

namespace quillory::demo {

namespace {

/// Slow enough to take a picture of each state of the card.
constexpr Pace pace{1500, 350};
/// How long a card takes to fade in.
constexpr int fadeMilliseconds = 250;

class Tour {
  public:
    explicit Tour(const QString &picturesFolder) : m_pictures(picturesFolder), m_demo(pace, false) {}

    bool acceptRewrite(const QString &draft) {
        return step("the program follows the message box",
                    [this] { return logged("textElement=true, chat app", 1); }) &&
               typeDraft(draft) && step("the card is up", [this] { return logged("panel visible (1 cards)", 1); }) &&
               picture("waiting") && step("the answer streams in", [this] { return served("sent piece 4"); }) &&
               picture("streaming") && step("the answer is complete", [this] { return logged(" complete (", 1); }) &&
               picture("finished") && accept(draft);
    }

    /// The user sends the rewrite; the other side asks something, and a reply is drafted, accepted and sent.
    bool answerCustomer() {
        set("assistantMode", "true");
        return send() && step("a reply is drafted from the FAQ", [this] { return logged(" complete (", 2); }) &&
               picture("reply") && acceptReply("Yes, we deliver all over Bahrain");
    }

    /// The same with two models for the next question. The thanks after it need no reply.
    bool compareReplies() {
        set("compareMode", "true");
        return send() && step("two models reply", [this] { return logged(" complete (", 4); }) &&
               picture("two-models") && acceptReply("Please order birthday cakes two days before.") && send() &&
               step("the customer thanks, and no reply is needed",
                    [this] { return logged(": no reply needed (SKIP)", 2); });
    }

    /// Asks two models for a rewrite, one of which the service does not know.
    bool seeFailure(const QString &draft) {
        set("assistantMode", "false");
        set("secondModel", "nobody/absent-model");
        const bool seen = step("the box is empty", [this] { return m_demo.field().isEmpty(); }) && typeDraft(draft) &&
                          step("one of two models fails", [this] { return logged("Absent Model failed: ", 1); }) &&
                          step("the other one answers", [this] { return logged(" complete (", 5); }) &&
                          picture("failed");
        press("Escape");
        return seen;
    }

    [[nodiscard]] QString log() const { return m_demo.log(); }
    [[nodiscard]] QString accepted() const { return m_accepted; }

  private:
    bool typeDraft(const QString &draft) {
        test::run({"xdotool", "type", "--delay", "20", "--", draft.toStdString()});
        return step("the draft stands in the box", [&] { return m_demo.field() == draft; });
    }

    bool accept(const QString &draft) {
        const QString rewrite = Demo::expectedRewrite(draft);
        press("Tab");
        const bool held = step("the box holds the rewrite", [&] { return m_demo.field() == rewrite; });
        m_accepted = m_demo.field();
        return held && step("nothing was sent", [this] { return m_demo.sentMessages().isEmpty(); });
    }

    bool acceptReply(const char *start) {
        const qsizetype sentBefore = m_demo.sentMessages().size();
        press("Tab");
        return step("the box holds the reply", [&] { return m_demo.field().startsWith(QLatin1StringView(start)); }) &&
               step("nothing was sent", [&] { return m_demo.sentMessages().size() == sentBefore; });
    }

    /// Presses Enter, as the user would.
    bool send() {
        const QStringList whole = m_demo.sentMessages() + QStringList{m_demo.field()};
        press("Return");
        return step("Enter sends it", [&] { return m_demo.sentMessages() == whole; });
    }

    void set(const char *key, const char *value) const {
        m_demo.changeSetting(QString::fromLatin1(key), QString::fromLatin1(value));
    }
    static void press(const char *key) { test::run({"xdotool", "key", key}); }

    [[nodiscard]] bool logged(const char *text, qsizetype times) const {
        return m_demo.log().count(QLatin1StringView(text)) >= times;
    }

    [[nodiscard]] bool served(const char *text) const { return m_demo.serviceLog().contains(QLatin1StringView(text)); }

    template <typename Condition> bool step(const char *what, Condition condition) {
        const bool done = test::waitUntil([&] { return stopRequested || condition(); }, 20'000) && !stopRequested;
        std::cout << (done ? "  yes  " : "  NO   ") << what << std::endl;
        return done;
    }

    bool picture(const char *look) {
        test::waitUntil([] { return false; }, fadeMilliseconds);
        const QString file = m_pictures + u'/' + QString::fromLatin1(look) + QStringLiteral(".png");
        const bool taken = test::run({"import", "-window", "root", file.toStdString()}) == 0;
        std::cout << "  pic  " << file.toStdString() << (taken ? "" : " could not be taken") << std::endl;
        return taken;
    }

    QString m_pictures;
    Demo m_demo;
    QString m_accepted;
};

} // namespace

int runUnseen(const QString &picturesFolder) {
    std::cout << "There is no display: running on one of its own.\n" << std::endl;
    QDir().mkpath(picturesFolder);
    test::RealDesktop::Options options;
    options.screen = "640x720x24";
    options.compositor = true;
    const test::RealDesktop desktop(options);
    Tour tour(picturesFolder);
    const bool passed = tour.acceptRewrite(QStringLiteral("helo can u send me the price list")) &&
                        tour.answerCustomer() && tour.compareReplies() &&
                        tour.seeFailure(QStringLiteral("pls tell me wen they are avaliable"));
    std::cout << "\nThe program's log:\n"
              << tour.log().toStdString() << "\nThe message box held: " << tour.accepted().toStdString() << std::endl;
    return passed ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace quillory::demo
