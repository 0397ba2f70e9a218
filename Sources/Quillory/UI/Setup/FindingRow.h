// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Setup/Diagnosis.h"

#include <QWidget>

namespace quillory::ui {

/// One finding of the doctor: how it stands, what was found, what to do, and a button for what can be mended here.
class FindingRow final : public QWidget {
  public:
    /// mend: called when the user presses the button.
    FindingRow(const Finding &finding, std::function<void(const Finding &)> mend);
};

} // namespace quillory::ui
