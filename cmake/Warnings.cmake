# SPDX-FileCopyrightText: 2026 The Quillory developers
# SPDX-License-Identifier: GPL-3.0-or-later
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x060400)
