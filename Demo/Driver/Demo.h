// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace quillory::demo {

/// How the model service answers, in milliseconds.
struct Pace {
    int firstPiece = 600;
    int betweenPieces = 40;
};

/// The model service, the program and the chat window. They run with throwaway settings on the desktop that this
/// process's environment names, and end with this object.
class Demo {
  public:
    /// draftsReplies: whether replies are drafted from the start. Throws std::runtime_error when a part cannot be
    /// started.
    Demo(Pace pace, bool draftsReplies);
    ~Demo();
    Demo(const Demo &) = delete;
    Demo &operator=(const Demo &) = delete;

    /// The text in the message box.
    [[nodiscard]] QString field() const;
    /// The messages it has sent.
    [[nodiscard]] QStringList sentMessages() const;
    [[nodiscard]] bool chatIsOpen() { return m_chat.isRunning(); }
    /// The program's log so far.
    [[nodiscard]] QString log() const;
    /// The output of the model service so far.
    [[nodiscard]] QString serviceLog() const;
    /// Writes one of the program's settings, from another process, as a user would.
    void changeSetting(const QString &key, const QString &value) const;
    /// The rewrite that the model service gives for a draft.
    [[nodiscard]] static QString expectedRewrite(const QString &draft);

  private:
    void prepareSettings(bool draftsReplies) const;
    void startService(Pace pace);
    [[nodiscard]] QByteArray serviceAddress() const;

    QTemporaryDir m_folder;
    QProcess m_service;
    test::ChildProcess m_program;
    test::ChildProcess m_chat;
};

} // namespace quillory::demo
