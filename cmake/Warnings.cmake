# SPDX-FileCopyrightText: 2026 The Quillory developers
# SPDX-License-Identifier: GPL-3.0-or-later
option(QUILLORY_WARNINGS_AS_ERRORS "Stop at a compiler warning" OFF)
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(QUILLORY_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS)
if(Qt6_VERSION VERSION_LESS 6.5)
    add_compile_definitions(QT_DISABLE_DEPRECATED_BEFORE=0x060400) # the older name of the same
else()
    add_compile_definitions(QT_DISABLE_DEPRECATED_UP_TO=0x060400)
endif()
