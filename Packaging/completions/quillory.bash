# SPDX-FileCopyrightText: 2026 The Quillory developers
_quillory() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words=
    local keys="enabled assistantMode tone debounceMs minChars maxChars model compareMode secondModel businessProfile
        faqEntries faqKnowledge openRouterAPIKey debugAcceptOnce"
    local IFS=$' \t\n'
    case $COMP_CWORD:${COMP_WORDS[1]} in
    1:*) words="autostart defaults doctor inspect rewrite setup stats --version --help" ;;
    2:autostart) words="on off" ;;
    2:defaults) words="read write delete" ;;
    3:defaults) words=$keys ;;
    *:doctor) words="--fix --json" ;;
    *:inspect) [ "$previous" = --wait ] || words="--json --wait" ;;
    *:rewrite)
        if [ "$previous" = --tone ]; then
            local IFS=$'\n'
            words=$'professional\nfriendly\nconcise\n"grammar\\\\ only"' # as it is to be typed
        else
            words="--tone --json"
        fi
        ;;
    2:setup) words="--terminal" ;;
    2:stats) words="--json" ;;
    esac
    COMPREPLY=($(compgen -W "$words" -- "$current"))
}
complete -F _quillory quillory
