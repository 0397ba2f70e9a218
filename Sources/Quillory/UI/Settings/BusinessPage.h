// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Settings/FAQEditor.h"

#include <QWidget>

class QScrollArea;

namespace quillory::ui {

class FAQList;
class SettingsBinding;
class TextField;

/// The sections of the tab "Business".
class BusinessPage final : public QWidget {
  public:
    /// area: what the page scrolls in, which is to be its parent.
    BusinessPage(SettingsBinding &binding, QScrollArea &area);

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    [[nodiscard]] QWidget *profileSection(SettingsBinding &binding);
    [[nodiscard]] QWidget *faqSection(SettingsBinding &binding);
    void followView();
    void reveal(QWidget *block);

    QScrollArea &m_area;
    FAQEditor m_faq;
    TextField *m_profile;
    FAQList *m_list;
    /// The profile as it was last shown or stored.
    QString m_shownProfile;
};

} // namespace quillory::ui
