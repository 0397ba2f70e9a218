// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

class QMessageBox;

namespace platform::desktop::atspi {

/// Says that accessibility is off, and offers to switch it on for the session; where there is no service to switch on,
/// says what is missing. Does not block: the answer arrives in the callback.
class TrustDialog {
  public:
    /// enable: empty where there is no service.
    explicit TrustDialog(std::function<void()> enable);
    ~TrustDialog();
    TrustDialog(const TrustDialog &) = delete;
    TrustDialog &operator=(const TrustDialog &) = delete;
    /// Shows the dialog, or brings it to the front.
    void show();

  private:
    std::unique_ptr<QMessageBox> m_box;
};

} // namespace platform::desktop::atspi
