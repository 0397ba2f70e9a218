// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace quillory::ui {

class SettingsBinding;

/// The sections of the tab "General".
class GeneralPage final : public QWidget {
  public:
    explicit GeneralPage(SettingsBinding &binding);

  private:
    [[nodiscard]] QWidget *behaviorSection(SettingsBinding &binding);
};

} // namespace quillory::ui
