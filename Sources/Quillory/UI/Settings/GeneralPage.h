// SPDX-FileCopyrightText: 2026 The Quillory developers
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
