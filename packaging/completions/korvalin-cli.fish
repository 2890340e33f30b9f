# Completion of korvalin-cli for fish.
function __korvalin_cli_first
    test (count (commandline -opc)) -eq 1
end

function __korvalin_cli_at
    set -l words (commandline -opc)
    test (count $words) -gt 1; and contains -- $words[2] $argv
end

function __korvalin_cli_is
    test (commandline -opc | string join ' ') = "korvalin-cli $argv"
end

function __korvalin_cli_vnstat
    commandline -opc | string join ' ' | string match -q 'korvalin-cli import vnstat*'
end

complete -c korvalin-cli -f
complete -c korvalin-cli -s h -l help -d 'Print help'
complete -c korvalin-cli -n __korvalin_cli_first -l version -d 'Print the version'
complete -c korvalin-cli -n __korvalin_cli_first -a settings -d 'Read and change settings'
complete -c korvalin-cli -n __korvalin_cli_first -a lines -d 'Monitored lines with bytes and rates'
complete -c korvalin-cli -n __korvalin_cli_first -a network -d 'Network adapters and addresses'
complete -c korvalin-cli -n __korvalin_cli_first -a status -d 'Rates, use and forecast on one line'
complete -c korvalin-cli -n __korvalin_cli_first -a metrics -d 'Figures for a monitoring system'
complete -c korvalin-cli -n __korvalin_cli_first -a provider -d 'Correct the use of the period'
complete -c korvalin-cli -n __korvalin_cli_first -a records -d 'Recorded connections'
complete -c korvalin-cli -n __korvalin_cli_first -a sums -d 'Sums per alias and period'
complete -c korvalin-cli -n __korvalin_cli_first -a repair -d 'Load and repair the statistics'
complete -c korvalin-cli -n __korvalin_cli_first -a record -d 'Record without a window'
complete -c korvalin-cli -n __korvalin_cli_first -a import -d 'Take history over from another program'
complete -c korvalin-cli -n __korvalin_cli_first -a completion -d 'Print the completion for a shell'

complete -c korvalin-cli -n '__korvalin_cli_is settings' -a list -d 'All settings'
complete -c korvalin-cli -n '__korvalin_cli_is settings' -a get -d 'One setting'
complete -c korvalin-cli -n '__korvalin_cli_is settings' -a set -d 'Store a setting'

complete -c korvalin-cli -n '__korvalin_cli_at status' -l alias -x -d 'Of this alias'
complete -c korvalin-cli -n '__korvalin_cli_at status' -l format -x -a 'json text' -d 'How it is printed'
complete -c korvalin-cli -n '__korvalin_cli_at lines status' -l watch -d 'Every second'
complete -c korvalin-cli -n '__korvalin_cli_at lines' -l format -x -a 'table json' -d 'How it is printed'
complete -c korvalin-cli -n '__korvalin_cli_at network' -l json -d 'As one JSON document'
complete -c korvalin-cli -n '__korvalin_cli_at sums' -l period -x -a 'day week month' -d 'Length of a period'
complete -c korvalin-cli -n '__korvalin_cli_at records sums' -l alias -x -d 'Only this alias'
complete -c korvalin-cli -n '__korvalin_cli_at records sums' -l closed -d 'Without open connections'
complete -c korvalin-cli -n '__korvalin_cli_at records sums' -l format -x -a 'table json csv' -d 'How it is printed'
complete -c korvalin-cli -n '__korvalin_cli_at records' -l from -x -d 'First day on which a connection ended'
complete -c korvalin-cli -n '__korvalin_cli_at records' -l till -x -d 'Last day on which a connection ended'
complete -c korvalin-cli -n '__korvalin_cli_at metrics' -l output -r -F -d 'Into this file'
complete -c korvalin-cli -n '__korvalin_cli_is completion' -a 'bash zsh fish' -d 'Whose'
complete -c korvalin-cli -n '__korvalin_cli_is import' -a vnstat -d 'The days of vnStat'
complete -c korvalin-cli -n '__korvalin_cli_vnstat' -l interface -x -d 'Only this one'
complete -c korvalin-cli -n '__korvalin_cli_vnstat' -l dry-run -d 'Only tell what would be taken'
complete -c korvalin-cli -n '__korvalin_cli_vnstat' -F
