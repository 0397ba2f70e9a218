// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Application.h"

#include <vector>

namespace quillory::test {

/// A desktop whose user sees alerts and progress, and answers when the test says so.
class SimulatedApplication final : public platform::Application {
  public:
    void runAlert(const platform::Alert &alert, std::function<void(int)> answered) override {
        alerts.push_back(alert);
        m_answers.push_back(std::move(answered));
    }
    [[nodiscard]] std::unique_ptr<platform::ProgressWindow> showProgress(const QString & /*title*/,
                                                                         std::function<void()> cancel) override {
        pressCancel = std::move(cancel);
        return std::make_unique<Progress>(*this);
    }
    void terminate() override { isTerminated = true; }

    /// Those that were shown, as "title|body|button|button".
    [[nodiscard]] QStringList shown() const {
        QStringList texts;
        for (const platform::Alert &alert : alerts) {
            texts += (QStringList{alert.title, alert.body} + alert.buttons).join(u'|');
        }
        return texts;
    }
    /// Presses a button of the last alert.
    void answer(int button) {
        std::exchange(m_answers.back(), [](int) {})(button);
    }

    std::vector<platform::Alert> alerts;
    /// What the progress window has said, each work once.
    QStringList works;
    bool hasProgress = false;
    std::function<void()> pressCancel;
    bool isTerminated = false;

  private:
    class Progress final : public platform::ProgressWindow {
      public:
        explicit Progress(SimulatedApplication &application) : m_application(application) {
            m_application.hasProgress = true;
        }
        ~Progress() override { m_application.hasProgress = false; }
        Progress(const Progress &) = delete;
        Progress &operator=(const Progress &) = delete;
        void show(const QString &work, std::optional<double> /*done*/) override {
            if (!m_application.works.contains(work)) {
                m_application.works += work;
            }
        }

      private:
        SimulatedApplication &m_application;
    };

    std::vector<std::function<void(int)>> m_answers;
};

} // namespace quillory::test
