// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QScrollArea;
class QWidget;

namespace quillory::ui {

class SettingsBinding;

/// The sections of the tab "Business". The binding outlives them. area: the scroll area that the page is put into.
[[nodiscard]] QWidget *newBusinessPage(SettingsBinding &binding, QScrollArea &area);

} // namespace quillory::ui
