# SPDX-FileCopyrightText: 2026 The Quillory developers
# SPDX-License-Identifier: GPL-3.0-or-later
set -l keys enabled assistantMode tone debounceMs minChars maxChars model compareMode secondModel businessProfile \
    faqEntries faqKnowledge openRouterAPIKey debugAcceptOnce
complete -c quillory -f
complete -c quillory -n __fish_use_subcommand -a autostart -d 'Start it at every login, or no longer'
complete -c quillory -n __fish_use_subcommand -a defaults -d 'Show and change the settings'
complete -c quillory -n __fish_use_subcommand -a doctor -d 'Check what the program needs and say what to do'
complete -c quillory -n __fish_use_subcommand -a inspect -d 'Show what is seen and what would be sent'
complete -c quillory -n __fish_use_subcommand -a rewrite -d 'Rewrite a text'
complete -c quillory -n __fish_use_subcommand -a setup -d 'Set it up, and enter the API key'
complete -c quillory -n __fish_use_subcommand -a stats -d 'Show how often each model was chosen'
complete -c quillory -n __fish_use_subcommand -l version -d 'Show the version'
complete -c quillory -l help -d 'Show a short help'
complete -c quillory -n '__fish_seen_subcommand_from autostart; and not __fish_seen_subcommand_from on off' -a 'on off'
set -l verbs read write delete
set -l is_defaults '__fish_seen_subcommand_from defaults; and'
complete -c quillory -n "$is_defaults not __fish_seen_subcommand_from $verbs" -a "$verbs"
complete -c quillory -n "$is_defaults __fish_seen_subcommand_from $verbs" -a "$keys"
complete -c quillory -n '__fish_seen_subcommand_from doctor' -l fix -d 'Do what is safe'
complete -c quillory -n '__fish_seen_subcommand_from inspect' -l wait -x -d 'Seconds to wait for a message box'
complete -c quillory -n '__fish_seen_subcommand_from doctor inspect rewrite stats' -l json -d 'As JSON'
complete -c quillory -n '__fish_seen_subcommand_from rewrite' -l tone -x -a "Professional Friendly Concise 'Grammar only'"
complete -c quillory -n '__fish_seen_subcommand_from setup' -l terminal -d 'Ask in the terminal'
