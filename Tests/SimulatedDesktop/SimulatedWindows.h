// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Application.h"
#include "Platform/PanelWindow.h"
#include "Platform/Screens.h"
#include "Platform/StatusBar.h"
#include "Quillory/Panel/SuggestionHost.h"

#include <QObject>

namespace quillory::test {

/// A desktop whose user sees alerts and progress, and answers when the test says so.
class SimulatedApplication final : public platform::Application {
  public:
    std::vector<platform::Alert> alerts;
    /// What the progress window has said, each work once.
    QStringList works;
    bool hasProgress = false;
    std::function<void()> pressCancel;
    bool isTerminated = false;

    /// The alerts that were shown, as "title|body|button|button".
    [[nodiscard]] QStringList shown() const {
        QStringList texts;
        for (const platform::Alert &alert : alerts) {
            texts += (QStringList{alert.title, alert.body} + alert.buttons).join(u'|');
        }
        return texts;
    }
    void answer(int button) {
        std::exchange(m_answers.back(), [](int) {})(button);
    }

    void runAlert(const platform::Alert &alert, std::function<void(int)> answered) override {
        alerts.push_back(alert);
        m_answers.push_back(std::move(answered));
    }
    [[nodiscard]] std::unique_ptr<platform::ProgressWindow> showProgress(const QString & /*title*/,
                                                                         std::function<void()> cancel) override {
        pressCancel = std::move(cancel);
        hasProgress = true;
        return std::make_unique<Progress>(*this);
    }
    void terminate() override { isTerminated = true; }

  private:
    struct Progress final : platform::ProgressWindow {
        explicit Progress(SimulatedApplication &theApplication) : application(theApplication) {}
        ~Progress() override { application.hasProgress = false; }
        Progress(const Progress &) = delete;
        Progress &operator=(const Progress &) = delete;
        void show(const QString &work, std::optional<double> /*done*/) override {
            application.works += application.works.contains(work) ? QStringList() : QStringList(work);
        }
        SimulatedApplication &application;
    };

    std::vector<std::function<void(int)>> m_answers;
};

/// The one panel window of a simulated desktop, as its user sees it. Animations end at once and are counted.
class SimulatedPanelWindows final : public platform::PanelWindows {
  public:
    bool visible = false;
    platform::Rect frame;
    int raised = 0;
    int animations = 0;

    [[nodiscard]] std::unique_ptr<platform::PanelWindow> create() override { return std::make_unique<Window>(*this); }

  private:
    struct Window final : platform::PanelWindow {
        explicit Window(SimulatedPanelWindows &theDesktop) : desktop(theDesktop) {}
        ~Window() override { desktop.visible = false; }
        Window(const Window &) = delete;
        Window &operator=(const Window &) = delete;
        void setContentView(QObject * /*view*/) override {}
        void setContentSize(platform::Size size) override {
            desktop.frame = {desktop.frame.x, desktop.frame.y, size.width, size.height};
        }
        void setFrameOrigin(platform::Point origin) override {
            desktop.frame = {origin.x, origin.y, desktop.frame.width, desktop.frame.height};
        }
        [[nodiscard]] platform::Rect frame() const override { return desktop.frame; }
        void setAlpha(double /*alpha*/) override {}
        void orderFrontRegardless() override {
            desktop.visible = true;
            ++desktop.raised;
        }
        void orderOut() override { desktop.visible = false; }
        [[nodiscard]] bool isVisible() const override { return desktop.visible; }
        void animate(platform::Point origin, double /*alpha*/, std::chrono::milliseconds /*duration*/) override {
            ++desktop.animations;
            setFrameOrigin(origin);
        }
        SimulatedPanelWindows &desktop;
    };
};

/// The cards as a test's user sees and clicks them. Makes hosts that must not outlive it.
class SimulatedCards {
  public:
    SuggestionCards shown;
    double width = 0;
    int renders = 0;
    double height = 120;
    std::function<void(int)> clickAccept;
    std::function<void()> clickDismiss;

    [[nodiscard]] MakeSuggestionHost maker() {
        return [this] { return std::make_unique<Host>(*this); };
    }

  private:
    struct Host final : SuggestionHost {
        explicit Host(SimulatedCards &theCards) : cards(theCards) {}
        platform::Size setRootView(const SuggestionCards &shown, double width, std::function<void(int)> onAccept,
                                   std::function<void()> onDismiss) override {
            cards.shown = shown;
            cards.width = width;
            cards.clickAccept = std::move(onAccept);
            cards.clickDismiss = std::move(onDismiss);
            ++cards.renders;
            return {width, cards.height};
        }
        [[nodiscard]] QObject *view() override { return &contents; }
        SimulatedCards &cards;
        QObject contents;
    };
};

/// Displays as a test puts them together: one of 1440 x 900 points with a bar of 25 at its top, unless told otherwise.
/// The first one is the main screen.
class SimulatedScreens final : public platform::Screens {
  public:
    std::vector<platform::Screen> attached{{{0, 0, 1440, 900}, {0, 0, 1440, 875}}};

    [[nodiscard]] std::vector<platform::Screen> screens() override { return attached; }
    [[nodiscard]] std::optional<platform::Screen> mainScreen() override {
        return attached.empty() ? std::nullopt : std::optional(attached.front());
    }
};

/// A tray that comes and goes as the test says.
class SimulatedStatusBar final : public platform::StatusBar {
  public:
    /// What the user was told without an icon.
    QStringList told;
    void setAvailable(bool isAvailable) {
        m_isAvailable = isAvailable;
        m_changed();
    }

    [[nodiscard]] bool isAvailable() const override { return m_isAvailable; }
    [[nodiscard]] platform::RegistrationHandle onChange(std::function<void()> changed) override {
        m_changed = std::move(changed);
        return std::make_unique<platform::Registration>();
    }
    void tell(const QString & /*title*/, const QString &text) override { told += text; }

  private:
    bool m_isAvailable = false;
    std::function<void()> m_changed = [] {};
};

} // namespace quillory::test
