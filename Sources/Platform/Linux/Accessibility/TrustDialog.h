// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <functional>
#include <memory>

class QMessageBox;

namespace platform::desktop::atspi {

/// Offers to switch accessibility on for the session. Does not block: the answer arrives in the callback.
class TrustDialog {
  public:
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
