// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPlainTextEdit>

#include <functional>

class QValidator;

namespace quillory::ui {

/// A field of several lines. Its text is plain, with LF as line break; other control characters are left out of what is
/// pasted.
class TextField final : public QPlainTextEdit {
  public:
    explicit TextField(const QString &placeholder = {});
    /// The text with everything that is in it; toPlainText() turns no-break spaces into spaces.
    [[nodiscard]] QString text() const;
    /// Shows a text without calling onEdit. The cursor stays where it was, as far as there is a text.
    void showText(const QString &text);
    /// Whether the user has changed the text since the field got the focus.
    [[nodiscard]] bool isBeingTyped() const { return hasFocus() && document()->isModified(); }
    /// Makes the field as high as its text, from one line to that many.
    void growTo(int lines);
    /// Called when the user has changed the text.
    std::function<void()> onEdit;

  protected:
    void resizeEvent(QResizeEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;

  private:
    void alignToScript();
    void fitLines();

    bool m_isShowing = false;
    int m_mostLines = 0;
};

/// Keeps what is typed or pasted into a single-line field in one line, and control characters out of it.
[[nodiscard]] QValidator *newLineValidator(QObject *parent);

} // namespace quillory::ui
