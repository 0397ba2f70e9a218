// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

namespace quillory::ui {

class SettingsBinding;

/// The sections of the tab "General". The binding outlives them.
[[nodiscard]] QWidget *newGeneralPage(SettingsBinding &binding);

} // namespace quillory::ui
