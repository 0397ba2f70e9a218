// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QScrollArea;

namespace quillory::ui {

class SettingsBinding;
class TextField;

/// The sections of the tab "Business".
class BusinessPage final : public QWidget {
  public:
    /// area: the scroll area that the page is put into.
    BusinessPage(SettingsBinding &binding, QScrollArea &area);

  private:
    [[nodiscard]] QWidget *profileSection(SettingsBinding &binding);

    TextField *m_profile;
    /// The profile as it was last shown or stored.
    QString m_shownProfile;
};

} // namespace quillory::ui
