# Completion of korvalin-cli for bash.
_korvalin_cli() {
    local words=
    case "${COMP_WORDS[*]:1:COMP_CWORD-1}" in
        "") words="settings lines network status metrics provider records sums repair record import completion -h --help --version" ;;
        settings) words="list get set -h --help" ;;
        *--period) words="day week month" ;;
        lines*--format) words="table json" ;;
        status*--format) words="json text" ;;
        *--format) words="table json csv" ;;
        *--alias | *--from | *--till | *--interface) ;;
        import*vnstat*) words="--interface --dry-run -h --help"; compopt -o default 2>/dev/null ;; # or a file
        import*) words="vnstat -h --help" ;;
        completion) words="bash zsh fish -h --help" ;;
        metrics*--output) compopt -o default 2>/dev/null ;;
        metrics*) words="--output -h --help" ;;
        lines*) words="--watch --format -h --help" ;;
        status*) words="--alias --watch --format -h --help" ;;
        network*) words="--json -h --help" ;;
        records*) words="--alias --closed --format --from --till -h --help" ;;
        sums*) words="--period --alias --closed --format -h --help" ;;
        *) words="-h --help" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _korvalin_cli korvalin-cli
