// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <exception>

namespace quillory {

/// A failure of the model client or of the self-update, with a description that a user can read.
class RewriteError : public std::exception {
  public:
    enum class Case { badResponse, missingKey };

    [[nodiscard]] static RewriteError badResponse(const QString &message) { return {Case::badResponse, message}; }
    [[nodiscard]] static RewriteError missingKey() {
        return {Case::missingKey, QStringLiteral("No OpenRouter API key set. Open Settings from the menu bar icon.")};
    }

    [[nodiscard]] Case which() const { return m_case; }
    [[nodiscard]] const QString &description() const { return m_description; }
    [[nodiscard]] const char *what() const noexcept override { return m_utf8.constData(); }

  private:
    RewriteError(Case which, const QString &description)
        : m_case(which), m_description(description), m_utf8(description.toUtf8()) {}

    Case m_case;
    QString m_description;
    QByteArray m_utf8;
};

} // namespace quillory
