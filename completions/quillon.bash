# bash completion for quillon
_quillon()
{
    local cur prev words cword
    if declare -F _init_completion >/dev/null; then
        _init_completion || return
    else
        cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} words=("${COMP_WORDS[@]}") cword=$COMP_CWORD
    fi
    local commands="info links preflight package verify inspect metadata presets schema"
    local presets="list show use set new rename delete export import"
    local command="" sub="" i
    for ((i = 1; i < cword; i++)); do
        [[ ${words[i]} == -* ]] && continue
        if [[ -z $command ]]; then command=${words[i]}; elif [[ $command == presets && -z $sub ]]; then sub=${words[i]}; fi
    done

    case $prev in
        --files-from|--preset-file|--output) COMPREPLY=($(compgen -f -- "$cur")); return ;;
        --links-dir|--report-dir|--to) COMPREPLY=($(compgen -d -- "$cur")); return ;;
        --search-links) COMPREPLY=($(compgen -W "0 1 2 3" -- "$cur")); return ;;
        --jobs|--max-items) return ;;
        --format)
            case $command in
                links) COMPREPLY=($(compgen -W "table json" -- "$cur")) ;;
                preflight) COMPREPLY=($(compgen -W "summary text tab json pdf" -- "$cur")) ;;
                *) COMPREPLY=($(compgen -W "text json" -- "$cur")) ;;
            esac
            return ;;
        --preset|--from)
            local IFS=$'\n'
            COMPREPLY=($(compgen -W "$(quillon presets list 2>/dev/null)" -- "$cur"))
            return ;;
    esac

    local options="--help" output="--output --quiet"
    case $command in
        "") COMPREPLY=($(compgen -W "$commands --help --version" -- "$cur")); return ;;
        info) options+=" --format --recursive --files-from $output" ;;
        links) options+=" --format --recursive --files-from --links-dir --search-links $output" ;;
        preflight) options+=" --format --recursive --files-from --links-dir --search-links --preset --preset-file --report-dir --overwrite --jobs --max-items $output" ;;
        package) options+=" --to --unified --separate --name-suffix --no-links --no-fonts --links-beside-document --no-relink --idml --pdf --text-report --pdf-report --no-manifest --jobs --hot-folder --format --overwrite --extras --extras-folder --links-dir --preset --preset-file" ;;
        verify) options+=" --format" ;;
        inspect|metadata) options+=" --format $output" ;;
        presets)
            if [[ -z $sub ]]; then COMPREPLY=($(compgen -W "$presets --help" -- "$cur")); return; fi
            case $sub in
                list|show) options+=" --format $output" ;;
                set) options+=" --add-font-rule --remove-font-rule --add-link-rule --remove-link-rule" ;;
                new) options+=" --from" ;;
                export|import) options+=" --replace --keep-both" ;;
            esac
            if [[ $cur != -* && $sub =~ ^(show|use|set|rename|delete)$ ]]; then
                local IFS=$'\n'
                COMPREPLY=($(compgen -W "$(quillon presets list 2>/dev/null)" -- "$cur"))
                return
            fi ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    else
        COMPREPLY=($(compgen -f -- "$cur"))
    fi
}
complete -o filenames -F _quillon quillon
