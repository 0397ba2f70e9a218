# SPDX-FileCopyrightText: 2026 The Quillory developers
# SPDX-License-Identifier: GPL-3.0-or-later
# Most of the time of a build from nothing goes into the toolkit's headers; precompiled, a file takes half as long.
# Every file still includes what it uses: QUILLORY_PRECOMPILED=OFF, which the linter runs with, proves it.
option(QUILLORY_PRECOMPILED "Precompile the headers that most files include" ON)

function(quillory_precompile target)
    if(QUILLORY_PRECOMPILED)
        target_precompile_headers(${target} PRIVATE <QObject> <QString> <QStringList> <QUrl> <algorithm> <chrono>
                                  <functional> <map> <memory> <optional> <set> <string> <variant> <vector> ${ARGN})
        target_compile_options(${target} PRIVATE -fpch-preprocess)
    endif()
endfunction()
