// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/LifeToken.h"
#include "Platform/MainQueue.h"
#include "Quillory/Setup/SetupWork.h"
#include "Quillory/Tasks.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QPushButton;
class QScrollArea;

namespace quillory::ui {

class FormText;
class KeySection;

/// Shows what the program needs, with a button at each line that can be put right here, and takes the API key. The work
/// runs on threads of its own, one piece at a time.
class SetupWindow final : public QWidget {
  public:
    /// What the work uses outlives the window, and so does the queue.
    SetupWindow(SetupWork work, platform::MainQueue &mainQueue);
    ~SetupWindow() override;

    /// Whether everything was in order when it was last looked at.
    [[nodiscard]] bool canWork() const { return m_canWork; }

  private:
    /// Runs work off the main thread, then done() on it with what came of it.
    template <typename Work, typename Done> void start(const QString &said, Work work, Done done);
    void look();
    void watch();
    void show(std::vector<Finding> findings);
    void orderFocus(const QWidget &page);
    void repair(const Finding &finding);
    void saveKey(const QString &typed);
    void setBusy(bool isBusy, const QString &said);
    void holdFocus();
    [[nodiscard]] QWidget *bottomRow();

    SetupWork m_work;
    platform::MainQueue &m_mainQueue;
    QScrollArea *m_list;
    KeySection *m_key;
    FormText *m_status;
    QPushButton *m_again;
    QPushButton *m_close;
    /// What had the focus when work began.
    QPointer<QPushButton> m_pressed;
    bool m_isBusy = false;
    bool m_isWatching = false;
    QTimer m_watchTimer;
    bool m_canWork = false;
    bool m_hasRepaired = false;
    /// What the last change said, shown until the next one.
    QString m_outcome;
    platform::LifeToken m_life;
    /// Last, so that no work is left when the rest goes.
    Tasks m_tasks;
};

} // namespace quillory::ui
