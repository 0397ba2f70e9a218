// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Shell/MenuWindow.h"

#include "Quillory/UI/AccessibleViews.h"
#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QAbstractButton>
#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QVBoxLayout>

namespace quillory::ui {

namespace {

constexpr int menuWindowMargin = 5;
constexpr int menuRowPadding = 5;
constexpr double checkColumn = 26;
constexpr int keyGap = 30;

class MenuRow final : public QAbstractButton {
  public:
    MenuRow(QAction &item, QWidget *parent) : QAbstractButton(parent), m_item(item) {
        setFocusPolicy(Qt::StrongFocus);
        setFont(formFont(bodyPoints));
        setText(item.text());
        setCheckable(item.isCheckable());
        setEnabled(item.isEnabled());
        connect(this, &QAbstractButton::clicked, &item, &QAction::trigger);
        connect(&item, &QAction::changed, this, [this] { follow(); });
        follow();
    }

    [[nodiscard]] QSize sizeHint() const override {
        const QFontMetrics metrics(font());
        return {scaled(checkColumn) + metrics.horizontalAdvance(text()) + keyGap + metrics.horizontalAdvance(key()) +
                    menuWindowMargin * 2,
                metrics.height() + 2 * scaled(menuRowPadding)};
    }

  protected:
    // One item is chosen at a time, by pointer or by key.
    void enterEvent(QEnterEvent * /*event*/) override { setFocus(Qt::MouseFocusReason); }
    void paintEvent(QPaintEvent * /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool isChosen = isEnabled() && hasFocus();
        if (isChosen) {
            painter.fillPath(continuousRoundedRect(rect(), 6), palette().color(QPalette::Highlight));
        }
        const QColor plain = isEnabled() ? lookOf(*this).primary : lookOf(*this).tertiary;
        const QColor color = isChosen ? palette().color(QPalette::HighlightedText) : plain;
        if (isChecked()) {
            const double side = symbolSide(10 * textScale());
            drawSymbol(painter, {(scaled(checkColumn) - side) / 2, (height() - side) / 2, side, side},
                       symbolName::checkmark, color);
        }
        const QRect texts = rect().adjusted(scaled(checkColumn), 0, -menuWindowMargin * 2, 0);
        painter.setPen(color);
        painter.drawText(texts, Qt::AlignLeft | Qt::AlignVCenter, text());
        painter.setPen(isChosen ? color : lookOf(*this).tertiary);
        painter.drawText(texts, Qt::AlignRight | Qt::AlignVCenter, key());
    }

  private:
    void follow() {
        setChecked(m_item.isChecked());
        setVisible(m_item.isVisible());
    }
    [[nodiscard]] QString key() const { return m_item.shortcut().toString(QKeySequence::NativeText); }

    QAction &m_item;
};

class MenuLine final : public QWidget {
  public:
    explicit MenuLine(QWidget *parent) : QWidget(parent) { setFixedHeight(2 * menuWindowMargin + 1); }

  protected:
    void paintEvent(QPaintEvent * /*event*/) override {
        QPainter(this).fillRect(2 * menuWindowMargin, menuWindowMargin, width() - 4 * menuWindowMargin, 1,
                                faded(lookOf(*this).primary, 0.12));
    }
};

} // namespace

MenuWindow::MenuWindow(QMenu &menu)
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      m_menu(menu) {
    installAccessibleViews();
    setWindowTitle(QStringLiteral("Quillory"));
    addActions(menu.actions()); // for their keys
    connect(&m_looks, &QTimer::timeout, &menu, &QMenu::aboutToShow);
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(menuWindowMargin, menuWindowMargin, menuWindowMargin, menuWindowMargin);
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
    for (QAction *item : m_menu.actions()) {
        layout()->addWidget(item->isSeparator() ? static_cast<QWidget *>(new MenuLine(this))
                                                : new MenuRow(*item, this));
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
    case Qt::Key_Escape:
        close();
        break;
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
