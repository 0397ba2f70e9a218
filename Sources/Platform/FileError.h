// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

namespace platform {

/// An operation on files failed. The message is a sentence for the user.
class FileError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace platform
