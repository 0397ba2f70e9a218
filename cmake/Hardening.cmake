# SPDX-FileCopyrightText: 2026 The Quillory developers
# SPDX-License-Identifier: GPL-3.0-or-later
# What dpkg-buildflags gives a Debian package. Off by default, because a distribution's own build passes flags of its
# own. "Packaging/check hardening" looks at the result.
option(QUILLORY_HARDENED "Build with the hardening flags that distributions use" OFF)

if(QUILLORY_HARDENED)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    add_compile_options(-fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
    # Without optimisation the C library has nothing to fortify, and says so in a warning.
    add_compile_options("$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
        add_compile_options(-fcf-protection)
    endif()
    add_link_options(-Wl,-z,relro -Wl,-z,now)
endif()
