# SPDX-FileCopyrightText: 2026 The Quillory developers
# SPDX-License-Identifier: GPL-3.0-or-later
if(QUILLORY_SANITIZE)
    add_compile_options(-fsanitize=${QUILLORY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${QUILLORY_SANITIZE})
endif()
