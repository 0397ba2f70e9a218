# SPDX-FileCopyrightText: 2026 The Quillory developers
# SPDX-License-Identifier: GPL-3.0-or-later
set -l keys enabled assistantMode tone debounceMs minChars maxChars model compareMode secondModel businessProfile \
    faqEntries faqKnowledge openRouterAPIKey debugAcceptOnce
complete -c quillory -f
complete -c quillory -n __fish_use_subcommand -a autostart -d 'Start at every login, or stop doing so'
complete -c quillory -n __fish_use_subcommand -a defaults -d 'Show or change settings'
complete -c quillory -n __fish_use_subcommand -a doctor -d 'Check everything that the program needs'
complete -c quillory -n __fish_use_subcommand -a inspect -d 'Show what it sees and what it would send'
complete -c quillory -n __fish_use_subcommand -a rewrite -d 'Rewrite a text'
complete -c quillory -n __fish_use_subcommand -a setup -d 'Set up, and enter the API key'
complete -c quillory -n __fish_use_subcommand -a stats -d 'Show how often you chose each model'
complete -c quillory -n __fish_use_subcommand -l version -d 'Show the version'
complete -c quillory -l help -d 'Show a short help'
complete -c quillory -n '__fish_seen_subcommand_from autostart; and not __fish_seen_subcommand_from on off' -a 'on off'
set -l verbs read write delete
set -l is_defaults '__fish_seen_subcommand_from defaults; and'
complete -c quillory -n "$is_defaults not __fish_seen_subcommand_from $verbs" -a "$verbs"
complete -c quillory -n "$is_defaults __fish_seen_subcommand_from $verbs" -a "$keys"
complete -c quillory -n '__fish_seen_subcommand_from doctor' -l fix -d 'Fix what can safely be fixed'
complete -c quillory -n '__fish_seen_subcommand_from inspect' -l wait -x -d 'Seconds to wait for a message box'
complete -c quillory -n '__fish_seen_subcommand_from doctor inspect rewrite stats' -l json -d 'As JSON'
complete -c quillory -n '__fish_seen_subcommand_from rewrite' -l tone -x -a "Professional Friendly Concise 'Grammar only'"
complete -c quillory -n '__fish_seen_subcommand_from setup' -l terminal -d 'Ask in the terminal'
