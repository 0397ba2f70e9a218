// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/TrustDialog.h"

#include <QMessageBox>
#include <QPushButton>

namespace platform::desktop::atspi {

namespace {
const QString switchedOff = QStringLiteral(
    "It reads the message box that you are typing in through this service, which is switched off now.\n\n"
    "It can be switched on for this session. Browsers and chat programs that are already running must be "
    "restarted once before Quillory can see their fields.");
const QString missing = QStringLiteral(
    "It reads the message box that you are typing in through this service, which does not answer in this session.\n\n"
    "It comes with the package at-spi2-core and is there after the next login.");
} // namespace

TrustDialog::TrustDialog(std::function<void()> enable) : m_box(std::make_unique<QMessageBox>()) {
    m_box->setIcon(QMessageBox::Information);
    m_box->setWindowTitle(QStringLiteral("Quillory"));
    m_box->setModal(false);
    m_box->setText(QStringLiteral("Quillory needs the desktop's accessibility service."));
    m_box->setInformativeText(enable ? switchedOff : missing);
    if (!enable) {
        m_box->addButton(QMessageBox::Close);
        return;
    }
    auto *switchOn = m_box->addButton(QStringLiteral("Switch On"), QMessageBox::AcceptRole);
    m_box->addButton(QStringLiteral("Not Now"), QMessageBox::RejectRole);
    m_box->setDefaultButton(switchOn);
    QObject::connect(m_box.get(), &QMessageBox::accepted, m_box.get(), std::move(enable));
}

TrustDialog::~TrustDialog() = default;

void TrustDialog::show() {
    m_box->show();
    m_box->raise();
    m_box->activateWindow();
}

} // namespace platform::desktop::atspi
