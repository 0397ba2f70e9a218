# SPDX-FileCopyrightText: 2026 The Quillory developers
# SPDX-License-Identifier: GPL-3.0-or-later
_quillory() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words=
    local keys="enabled assistantMode tone debounceMs minChars maxChars model compareMode secondModel businessProfile
        faqEntries faqKnowledge openRouterAPIKey debugAcceptOnce"
    local IFS=$' \t\n'
    case $COMP_CWORD:${COMP_WORDS[1]} in
    1:*) words="autostart defaults doctor inspect rewrite setup stats --version --help" ;;
    2:autostart) words="on off --help" ;;
    2:defaults) words="read write delete --help" ;;
    3:defaults) words=$keys ;;
    *:doctor) words="--fix --json --help" ;;
    *:inspect) [ "$previous" = --wait ] || words="--json --wait --help" ;;
    *:rewrite)
        if [ "$previous" = --tone ]; then
            local IFS=$'\n'
            words=$'professional\nfriendly\nconcise\n"grammar\\\\ only"' # as it is to be typed
        else
            words="--tone --json --help"
        fi
        ;;
    2:setup) words="--terminal --help" ;;
    2:stats) words="--json --help" ;;
    esac
    COMPREPLY=($(compgen -W "$words" -- "$current"))
}
complete -F _quillory quillory
