// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLineEdit>
#include <QPlainTextEdit>

namespace quillory::ui {

/// The size of texts that the user writes into the form.
inline constexpr double fieldPoints = 12;

/// A single-line field with a round border.
class LineField final : public QLineEdit {
  public:
    explicit LineField(const QString &placeholder);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

/// A field of several lines with a round border. Its text is plain, with LF as line break; other control characters are
/// left out of what is pasted.
class TextField : public QPlainTextEdit {
  public:
    explicit TextField(const QString &placeholder = {});
    /// The text with everything that is in it; the toolkit's own answer turns no-break spaces into spaces.
    [[nodiscard]] QString text() const;
    /// Shows a text without telling anybody of a change. The cursor stays where it was, as far as there is a text.
    void showText(const QString &text);
    /// Whether the user has changed the text since the field got the focus.
    [[nodiscard]] bool isBeingTyped() const { return hasFocus() && document()->isModified(); }
    /// Called when the user has changed the text.
    std::function<void()> onEdit;

    /// The height of a field for one line, and of one for all lines of a text up to a number, at a width.
    [[nodiscard]] static int lineHeight();
    [[nodiscard]] static int heightFor(const QString &text, int width, int mostLines);

  protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    [[nodiscard]] QMimeData *createMimeDataFromSelection() const override;

  private:
    void alignToScript();

    bool m_isShowing = false;
    /// Whether the document may hold breaks that are not in the text.
    bool m_hasSoftBreaks = false;
};

} // namespace quillory::ui
