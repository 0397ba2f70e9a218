// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/QtApplication.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

namespace platform::desktop {

namespace {
constexpr int alertWidth = 420;
constexpr int tallestText = 320;
constexpr int progressWidth = 360;
constexpr int percent = 100;

QLabel *plainLabel(const QString &text) {
    auto *const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText); // texts come from the network too
    label->setWordWrap(true);
    return label;
}

QLabel *titleLabel(const QString &text) {
    QLabel *const label = plainLabel(text);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

/// The text itself, or for a long one a window on it.
QWidget *bodyWidget(const QString &text) {
    QLabel *const label = plainLabel(text);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (label->heightForWidth(alertWidth) <= tallestText) {
        return label;
    }
    auto *const scroller = new QScrollArea;
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidget(label);
    scroller->setWidgetResizable(true);
    scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroller->setFixedHeight(tallestText);
    return scroller;
}

QDialogButtonBox *alertButtons(QDialog &dialog, const QStringList &titles) {
    auto *const box = new QDialogButtonBox;
    for (qsizetype i = 0; i < titles.size(); ++i) {
        // The ampersand would be a key to press, and not be seen.
        const QString shown = QString(titles.at(i)).replace(u'&', QStringLiteral("&&"));
        const auto role = i == 0 ? QDialogButtonBox::AcceptRole : QDialogButtonBox::RejectRole;
        QPushButton *const button = box->addButton(shown, role);
        button->setDefault(i == 0);
        QObject::connect(button, &QPushButton::clicked, &dialog,
                         [&dialog, i] { dialog.done(static_cast<int>(i) + 1); });
    }
    return box;
}

/// Its result is the number of the button, counted from 1; 0 when it was closed.
std::unique_ptr<QDialog> alertDialog(const Alert &alert) {
    auto dialog = std::make_unique<QDialog>(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint);
    dialog->setWindowTitle(QStringLiteral("Quillory"));
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->setAccessibleName(alert.title);
    dialog->setAccessibleDescription(alert.body);
    auto *const layout = new QVBoxLayout(dialog.get());
    layout->setSpacing(12);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->addWidget(titleLabel(alert.title));
    layout->addWidget(bodyWidget(alert.body));
    layout->addWidget(
        alertButtons(*dialog, alert.buttons.isEmpty() ? QStringList{QStringLiteral("OK")} : alert.buttons));
    dialog->setFixedWidth(alertWidth + 40);
    return dialog;
}

void comeToFront(QDialog &dialog, const std::function<void()> &bringForward) {
    // A window manager may take a new window for an intruder, which a second request mends.
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
    QtProgressWindow(const QString &title, std::function<void()> cancel, const std::function<void()> &bringForward)
        : m_cancel(std::move(cancel)) {
        m_dialog.setWindowTitle(title);
        m_dialog.setFixedWidth(progressWidth);
        auto *const layout = new QVBoxLayout(&m_dialog);
        layout->addWidget(m_label);
        layout->addWidget(m_bar);
        auto *const box = new QDialogButtonBox;
        box->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
        layout->addWidget(box);
        m_bar->setTextVisible(false);
        m_bar->setRange(0, 0);
        QObject::connect(box, &QDialogButtonBox::rejected, &m_dialog, &QDialog::reject);
        QObject::connect(&m_dialog, &QDialog::rejected, &m_dialog, [this] {
            if (const auto asked = std::exchange(m_cancel, nullptr)) {
                asked();
            }
        });
        comeToFront(m_dialog, bringForward);
    }

    void show(const QString &work, std::optional<double> done) override {
        m_label->setText(work);
        m_bar->setRange(0, done ? percent : 0);
        m_bar->setValue(static_cast<int>(done.value_or(0) * percent));
    }

  private:
    std::function<void()> m_cancel;
    QDialog m_dialog;
    QLabel *m_label = plainLabel(QString());
    QProgressBar *m_bar = new QProgressBar;
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
    m_open = alertDialog(alert);
    const int last = std::max(0, static_cast<int>(alert.buttons.size()) - 1);
    QObject::connect(m_open.get(), &QDialog::finished, m_open.get(),
                     [this, answered = std::move(answered), last](int result) {
                         m_open.release()->deleteLater(); // it is still among those that run
                         answered(result == 0 ? last : result - 1);
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
