# SPDX-License-Identifier: MIT
#
# Completion of tallyquill's options for bash.

_tallyquill() {
    local options='--file --each --separator --quiet --last --json --fail-fast --preview --with --no-files --user
        --deg --rad --figures --base --exponents --twos-complement --group --mark --comma --ten-key --plain --color --trace
        --help --version -f -F -q'
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} start=
    # bash divides --base=hex at the equals sign.
    if [[ $word == = ]]; then
        word=
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    case $before in
    -f | --file)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    --base) options='bin dec hex' ;;
    --color) options='auto always never' ;;
    --exponents) options='auto never always eng prefix finance fixed' ;;
    --with)
        [[ $word == *,* ]] && start=${word%,*},
        options='everyday constants money time temperature'
        ;;
    --each | -F | --separator | --figures | --mark) return ;;
    *) [[ $word == -* ]] || return ;;
    esac
    mapfile -t COMPREPLY < <(compgen -P "$start" -W "$options" -- "${word#"$start"}")
}
complete -F _tallyquill tallyquill
