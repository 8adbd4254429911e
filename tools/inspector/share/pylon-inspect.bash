# Completion of pylon-inspect for bash.

_pylon_inspect() {
    local current=$2 previous=$3
    COMPREPLY=()
    case $previous in
    --extract)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return
        ;;
    --zone)
        mapfile -t COMPREPLY < <(compgen -W "$(pylon-inspect --zones 2>/dev/null |
            awk '$1 ~ /^[A-Z]+$/ && !seen[$1]++ { print $1 }')" -- "$current")
        return
        ;;
    --log-level)
        mapfile -t COMPREPLY < <(compgen -W "all trace debug info warn error timing startup graphics" \
            -- "$current")
        return
        ;;
    --type)
        mapfile -t COMPREPLY < <(compgen -W "V a E" -- "$current")
        return
        ;;
    --camera | --log-size | --log-filter)
        return
        ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--camera --diffmap --dump --extract --help --json --log
            --log-filter --log-level --log-size --mask --png --resync --summary --type --verbose
            --version --zone --zones" -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -o filenames -F _pylon_inspect pylon-inspect
