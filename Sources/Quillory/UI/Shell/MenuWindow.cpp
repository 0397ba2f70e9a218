// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Shell/MenuWindow.h"

#include "Quillory/UI/AccessibleViews.h"
#include "Quillory/UI/Shell/Windows.h"

#include <QAbstractButton>
#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QStyleOptionMenuItem>
#include <QVBoxLayout>

#include <algorithm>

namespace quillory::ui {

namespace {

QString keyOf(const QAction &item) {
    return item.shortcut().toString(QKeySequence::NativeText);
}

/// An item, drawn by the style as in a menu.
class MenuRow final : public QAbstractButton {
  public:
    /// keyWidth: the room for keys, which is the same in all rows.
    MenuRow(QAction &item, int keyWidth) : m_item(item), m_keyWidth(keyWidth) {
        setFocusPolicy(Qt::StrongFocus);
        setText(item.text());
        setCheckable(item.isCheckable());
        setEnabled(item.isEnabled());
        connect(this, &QAbstractButton::clicked, &item, &QAction::trigger);
        connect(&item, &QAction::changed, this, [this] { follow(); });
        follow();
    }

    [[nodiscard]] QSize sizeHint() const override {
        const QStyleOptionMenuItem item = option();
        const QSize contents(fontMetrics().horizontalAdvance(text()) + m_keyWidth, fontMetrics().height());
        return style()->sizeFromContents(QStyle::CT_MenuItem, &item, contents, this);
    }

  protected:
    // One item is chosen at a time, by pointer or by key.
    void enterEvent(QEnterEvent * /*event*/) override { setFocus(Qt::MouseFocusReason); }
    void paintEvent(QPaintEvent * /*event*/) override {
        QPainter painter(this);
        const QStyleOptionMenuItem item = option();
        style()->drawControl(QStyle::CE_MenuItem, &item, &painter, this);
    }

  private:
    [[nodiscard]] QStyleOptionMenuItem option() const {
        QStyleOptionMenuItem option;
        option.initFrom(this);
        option.state.setFlag(QStyle::State_Selected, isEnabled() && hasFocus());
        option.text = text() + u'\t' + keyOf(m_item);
        option.font = font();
        option.menuHasCheckableItems = true;
        option.checkType = isCheckable() ? QStyleOptionMenuItem::NonExclusive : QStyleOptionMenuItem::NotCheckable;
        option.checked = isChecked();
        option.reservedShortcutWidth = m_keyWidth;
        return option;
    }
    void follow() {
        setChecked(m_item.isChecked());
        setVisible(m_item.isVisible());
    }

    QAction &m_item;
    int m_keyWidth;
};

QWidget *newLine() {
    auto *const line = new QFrame;
    line->setFrameStyle(static_cast<int>(QFrame::HLine) | static_cast<int>(QFrame::Sunken));
    return line;
}

} // namespace

MenuWindow::MenuWindow(QMenu &menu)
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      m_menu(menu) {
    installAccessibleViews();
    setWindowTitle(QStringLiteral("Quillory"));
    closeByKeys(*this);
    addActions(menu.actions()); // for their keys
    connect(&m_looks, &QTimer::timeout, &menu, &QMenu::aboutToShow);
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(5, 5, 5, 5);
    rows->setSpacing(0);
    rows->setSizeConstraint(QLayout::SetFixedSize);
}

void MenuWindow::open() {
    Q_EMIT m_menu.aboutToShow();
    qDeleteAll(findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly));
    addRows();
    show();
    raise();
    activateWindow();
}

void MenuWindow::addRows() {
    int keyWidth = 0;
    for (const QAction *item : m_menu.actions()) {
        keyWidth = std::max(keyWidth, fontMetrics().horizontalAdvance(keyOf(*item)));
    }
    for (QAction *item : m_menu.actions()) {
        layout()->addWidget(item->isSeparator() ? newLine() : new MenuRow(*item, keyWidth));
    }
}

// Other processes and the desktop may change what is shown, without notice.
void MenuWindow::showEvent(QShowEvent *event) {
    constexpr std::chrono::milliseconds lookAgain(500);
    m_looks.start(lookAgain);
    QWidget::showEvent(event);
}

void MenuWindow::hideEvent(QHideEvent *event) {
    m_looks.stop();
    QWidget::hideEvent(event);
}

void MenuWindow::keyPressEvent(QKeyEvent *event) {
    switch (event->key()) {
    case Qt::Key_Down:
        focusNextChild();
        break;
    case Qt::Key_Up:
        focusPreviousChild();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (auto *const row = qobject_cast<QAbstractButton *>(focusWidget())) {
            row->click();
        }
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace quillory::ui
