#compdef quillory
# SPDX-FileCopyrightText: 2026 The Quillory developers
# SPDX-License-Identifier: GPL-3.0-or-later
_quillory() {
    local -a commands keys
    commands=(
        'autostart:start at every login, or stop doing so'
        'defaults:show or change settings'
        'doctor:check everything that the program needs'
        'inspect:show what it sees and what it would send'
        'rewrite:rewrite a text'
        'setup:set up, and enter the API key'
        'stats:show how often you chose each model'
    )
    keys=(enabled assistantMode tone debounceMs minChars maxChars model compareMode secondModel businessProfile
        faqEntries faqKnowledge openRouterAPIKey debugAcceptOnce)
    if ((CURRENT == 2)); then
        _describe command commands
        compadd -- --version --help
        return
    fi
    case $words[2] in
    autostart) ((CURRENT == 3)) && compadd -- on off --help ;;
    defaults) ((CURRENT == 3)) && compadd -- read write delete --help || { ((CURRENT == 4)) && compadd -a keys; } ;;
    doctor) compadd -- --fix --json --help ;;
    inspect) [[ $words[CURRENT-1] == --wait ]] || compadd -- --json --wait --help ;;
    rewrite)
        if [[ $words[CURRENT-1] == --tone ]]; then
            compadd Professional Friendly Concise 'Grammar only'
        else
            compadd -- --tone --json --help
        fi
        ;;
    setup) compadd -- --terminal --help ;;
    stats) compadd -- --json --help ;;
    esac
}
_quillory "$@"
