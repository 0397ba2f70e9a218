// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Qt/QtApplication.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>

namespace platform::desktop {

namespace {

/// A message box grows with its text; this puts a long one, such as the notes of an update, behind a scroll bar.
void makeScrollable(QMessageBox &box) {
    constexpr int tallest = 320;
    constexpr int width = 420;
    auto *const body = box.findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel")); // Qt's own name for it
    if (body == nullptr || body->heightForWidth(width) <= tallest) {
        return;
    }
    auto *const scroller = new QScrollArea;
    delete box.layout()->replaceWidget(body, scroller);
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidget(body);
    scroller->setWidgetResizable(true);
    scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroller->setFixedSize(width + scroller->verticalScrollBar()->sizeHint().width(), tallest);
}

std::unique_ptr<QMessageBox> messageBox(const Alert &alert) {
    auto box = std::make_unique<QMessageBox>();
    box->setWindowFlag(Qt::WindowStaysOnTopHint);
    box->setWindowTitle(QStringLiteral("Quillory"));
    box->setWindowModality(Qt::ApplicationModal);
    // Texts come from the network too, and are not to be taken for markup.
    box->setText(QStringLiteral("<b>%1</b>").arg(alert.title.toHtmlEscaped()));
    box->setInformativeText(Qt::convertFromPlainText(alert.body, Qt::WhiteSpaceNormal));
    for (const QString &title : alert.buttons.isEmpty() ? QStringList(QStringLiteral("OK")) : alert.buttons) {
        // A single ampersand would be a key to press, and not be seen.
        const QString shown = QString(title).replace(u'&', QStringLiteral("&&"));
        const bool isFirst = box->buttons().isEmpty();
        QPushButton *const button = box->addButton(shown, isFirst ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
        box->setEscapeButton(button);
        if (isFirst) {
            box->setDefaultButton(button);
        }
    }
    makeScrollable(*box);
    return box;
}

void comeToFront(QDialog &dialog, const std::function<void()> &bringForward) {
    // A window manager may refuse the focus to a new window; a second request gets it.
    constexpr std::chrono::milliseconds untilManaged{300};
    dialog.show();
    dialog.raise();
    dialog.activateWindow();
    bringForward();
    QTimer::singleShot(untilManaged, &dialog, [&dialog, bringForward] {
        if (dialog.isVisible() && !dialog.isActiveWindow()) {
            bringForward();
        }
    });
}

class QtProgressWindow final : public ProgressWindow {
  public:
    QtProgressWindow(const QString &title, std::function<void()> cancel, const std::function<void()> &bringForward) {
        constexpr int width = 360;
        m_dialog.setWindowTitle(title);
        m_dialog.setFixedWidth(width);
        m_dialog.setMinimumDuration(0);
        m_dialog.setAutoReset(false);
        m_dialog.setAutoClose(false);
        QObject::connect(&m_dialog, &QProgressDialog::canceled, &m_dialog, std::move(cancel));
        comeToFront(m_dialog, bringForward);
    }

    void show(const QString &work, std::optional<double> done) override {
        constexpr int percent = 100;
        if (m_dialog.wasCanceled()) {
            return; // it would come up again
        }
        m_dialog.setLabelText(work);
        m_dialog.setRange(0, done ? percent : 0);
        m_dialog.setValue(static_cast<int>(done.value_or(0) * percent));
    }

  private:
    QProgressDialog m_dialog{QString(), QStringLiteral("Cancel"), 0, 0};
};
} // namespace

QtApplication::QtApplication(std::function<void()> bringForward) : m_bringForward(std::move(bringForward)) {}

QtApplication::~QtApplication() = default;

void QtApplication::runAlert(const Alert &alert, std::function<void(int)> answered) {
    m_waiting.emplace_back(alert, std::move(answered));
    if (!m_open) {
        showNext();
    }
}

void QtApplication::showNext() {
    if (m_waiting.empty()) {
        return;
    }
    auto [alert, answered] = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_open = messageBox(alert);
    QObject::connect(m_open.get(), &QDialog::finished, m_open.get(), [this, answered = std::move(answered)] {
        QMessageBox *const box = m_open.release();
        box->deleteLater(); // its code is still running
        const auto buttons = box->buttons();
        const auto clicked = buttons.indexOf(box->clickedButton()); // none when the window was closed
        answered(static_cast<int>(clicked < 0 ? buttons.size() - 1 : clicked));
        if (!m_open) {
            showNext();
        }
    });
    comeToFront(*m_open, m_bringForward);
}

std::unique_ptr<ProgressWindow> QtApplication::showProgress(const QString &title, std::function<void()> cancel) {
    return std::make_unique<QtProgressWindow>(title, std::move(cancel), m_bringForward);
}

void QtApplication::terminate() {
    QApplication::quit();
}

} // namespace platform::desktop
