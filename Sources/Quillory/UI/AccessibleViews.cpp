// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/AccessibleViews.h"

#include "Quillory/UI/Card/CardText.h"
#include "Quillory/UI/Card/KeyHints.h"
#include "Quillory/UI/Card/RefiningIndicator.h"
#include "Quillory/UI/Card/SuggestionCard.h"
#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Settings/SettingsWindow.h"
#include "Quillory/UI/Shell/MenuWindow.h"

#include <QAccessibleWidget>

namespace quillory::ui {

namespace {

// The views have no class names of their own, so this is asked for every plain widget.
QAccessibleInterface *makeInterface(const QString & /*className*/, QObject *object) {
    if (dynamic_cast<CardText *>(object) != nullptr || dynamic_cast<KeyHints *>(object) != nullptr ||
        dynamic_cast<RefiningIndicator *>(object) != nullptr) {
        return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::StaticText);
    }
    if (dynamic_cast<SuggestionCard *>(object) != nullptr || dynamic_cast<FormSection *>(object) != nullptr) {
        return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::Grouping);
    }
    if (dynamic_cast<SettingsWindow *>(object) != nullptr || dynamic_cast<MenuWindow *>(object) != nullptr) {
        return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::Window);
    }
    return nullptr;
}

} // namespace

void installAccessibleViews() {
    static const bool installed = (QAccessible::installFactory(makeInterface), true);
    static_cast<void>(installed);
}

} // namespace quillory::ui
