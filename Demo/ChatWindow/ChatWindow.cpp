// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ChatWindow/ChatWindow.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPushButton>
#include <QSaveFile>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace quillory::demo {

namespace {

const QString contact = QStringLiteral("Sara, Gulf Paper Supplies");

const QString sheet = QStringLiteral(R"(
    QWidget { font-size: 14px; color: #20242c; }
    #header { background: #ffffff; border-bottom: 1px solid #e2e5ec; }
    #avatar { background: #5b6cff; color: white; border-radius: 20px; font-weight: 600; font-size: 15px; }
    #name { font-size: 15px; font-weight: 600; }
    #status { color: #7a8291; font-size: 12px; }
    #conversation, #page { background: #eef0f6; }
    #theirs { background: white; border: 1px solid #e4e7ee; border-radius: 12px; border-bottom-left-radius: 3px; }
    #ours { background: #dfe5ff; border: 1px solid #d0d8ff; border-radius: 12px; border-bottom-right-radius: 3px; }
    #time { color: #8a92a3; font-size: 11px; }
    #footer { background: #ffffff; border-top: 1px solid #e2e5ec; }
    #box { background: #f4f5f9; border: 1px solid #dde1ea; border-radius: 14px; padding: 6px 10px; }
    #box:focus { border-color: #8794ff; background: white; }
    #send { background: #5b6cff; color: white; border: none; border-radius: 20px; font-size: 17px; }
    #send:hover { background: #4a5af0; }
    QScrollBar:vertical { background: transparent; width: 8px; }
    QScrollBar::handle:vertical { background: #c6cbd8; border-radius: 4px; min-height: 24px; }
    QScrollBar::add-line, QScrollBar::sub-line { height: 0; }
)");

QLabel *named(const QString &name, const QString &text, QWidget *parent) {
    auto *label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

QString timeNow() {
    return QDateTime::currentDateTime().toString(QStringLiteral("HH:mm"));
}

} // namespace

/// Made from top to bottom: screen readers read them in that order.
ChatWindow::ChatWindow(const QString &reportFile) : m_reportFile(reportFile) {
    setWindowTitle(contact);
    setStyleSheet(sheet);
    resize(560, 640);
    auto *content = new QWidget(this);
    auto *rows = new QVBoxLayout(content);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(makeHeader());
    m_conversation = new Conversation(content);
    rows->addWidget(m_conversation, 1);
    rows->addWidget(makeFooter());
    setCentralWidget(content);
    greet();
    connect(m_box, &QTextEdit::textChanged, this, [this] { report(); });
    m_box->onSend = [this] { send(); };
    m_box->setFocus();
    report();
}

QWidget *ChatWindow::makeHeader() {
    auto *header = new QWidget;
    header->setObjectName(QStringLiteral("header"));
    header->setAttribute(Qt::WA_StyledBackground);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(16, 10, 16, 10);
    row->setSpacing(12);
    auto *avatar = named(QStringLiteral("avatar"), QStringLiteral("S"), header);
    avatar->setFixedSize(40, 40);
    avatar->setAlignment(Qt::AlignCenter);
    row->addWidget(avatar);
    auto *names = new QVBoxLayout;
    names->setSpacing(1);
    names->addWidget(named(QStringLiteral("name"), contact, header));
    names->addWidget(named(QStringLiteral("status"), QStringLiteral("online"), header));
    row->addLayout(names, 1);
    return header;
}

QWidget *ChatWindow::makeFooter() {
    auto *footer = new QWidget;
    footer->setObjectName(QStringLiteral("footer"));
    footer->setAttribute(Qt::WA_StyledBackground);
    auto *row = new QHBoxLayout(footer);
    row->setContentsMargins(14, 10, 14, 10);
    row->setSpacing(10);
    m_box = new MessageBox(footer);
    row->addWidget(m_box, 1);
    auto *button = new QPushButton(QStringLiteral("➤"), footer);
    button->setObjectName(QStringLiteral("send"));
    button->setAccessibleName(QStringLiteral("Send"));
    button->setFixedSize(40, 40);
    button->setFocusPolicy(Qt::NoFocus);
    row->addWidget(button, 0, Qt::AlignBottom);
    connect(button, &QPushButton::clicked, this, [this] { send(); });
    return footer;
}

void ChatWindow::greet() {
    m_conversation->add(Sender::them, QStringLiteral("Good morning! Sara here, from Gulf Paper Supplies."),
                        QStringLiteral("09:12"));
    m_conversation->add(Sender::us, QStringLiteral("Good morning Sara, this is Noor from the bakery in Riffa."),
                        QStringLiteral("09:14"));
    m_conversation->add(Sender::them,
                        QStringLiteral("Lovely to hear from you! We have new cake boxes and paper bags this month. 😊"),
                        QStringLiteral("09:15"));
}

void ChatWindow::send() {
    const QString text = m_box->toPlainText().trimmed();
    if (text.isEmpty()) {
        return;
    }
    m_conversation->add(Sender::us, text, timeNow());
    m_sent << text;
    m_box->clear();
    QTimer::singleShot(1500, this, [this] { answer(); });
}

void ChatWindow::answer() {
    static const std::array answers{
        QStringLiteral("Of course, you will have it today. By the way, do you deliver cakes to Manama?"),
        QStringLiteral("Perfect. How early do I have to order a birthday cake?"),
        QStringLiteral("Thank you, Noor. See you soon!")};
    const auto number = std::min(static_cast<std::size_t>(m_sent.size()), answers.size()) - 1;
    m_conversation->add(Sender::them, answers[number], timeNow());
}

void ChatWindow::report() const {
    if (m_reportFile.isEmpty()) {
        return;
    }
    const QJsonObject state{{QStringLiteral("field"), m_box->toPlainText()},
                            {QStringLiteral("sent"), QJsonArray::fromStringList(m_sent)}};
    QSaveFile file(m_reportFile);
    if (file.open(QSaveFile::WriteOnly)) {
        file.write(QJsonDocument(state).toJson());
        file.commit();
    }
}

} // namespace quillory::demo
