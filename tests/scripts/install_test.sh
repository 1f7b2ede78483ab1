#!/usr/bin/env bash
# Installs the build into a private prefix and checks that the command, its manual and its
# completions land where bin, man and the shells look, and that the bash completion offers the
# commands and the presets subcommands.
set -euo pipefail
cmake=$1 build=$2 source=$3
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
"$cmake" --install "$build" --prefix "$prefix" >/dev/null
fail() { echo "FAIL: $*" >&2; exit 1; }
[[ -x $prefix/bin/quillon ]] || fail "bin/quillon missing or not executable"
[[ -f $prefix/share/man/man1/quillon.1 ]] || fail "share/man/man1/quillon.1 missing"
[[ -f $prefix/share/bash-completion/completions/quillon ]] || fail "bash completion missing"
[[ -f $prefix/share/zsh/site-functions/_quillon ]] || fail "zsh completion missing"
head -1 "$prefix/share/zsh/site-functions/_quillon" | grep -qx '#compdef quillon' || fail "zsh completion lacks #compdef"
"$prefix/bin/quillon" --version | grep -q '^quillon ' || fail "installed command does not run"
# The desktop application, when built, comes with its launcher entry (opening .idml files) and icon.
if [[ -x $prefix/bin/quillon-gui ]]; then
    desktop=$prefix/share/applications/quillon.desktop
    [[ -f $desktop ]] || fail "share/applications/quillon.desktop missing"
    grep -qx 'Exec=quillon-gui %F' "$desktop" || fail "desktop entry does not start quillon-gui with files"
    grep -q '^MimeType=.*application/vnd.adobe.indesign-idml-package;' "$desktop" || fail "desktop entry does not open .idml"
    [[ -f $prefix/share/icons/hicolor/scalable/apps/quillon.svg ]] || fail "application icon missing"
fi

complete_words() {
    bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _quillon; printf "%s\n" "${COMPREPLY[@]}"' \
        _ "$prefix/share/bash-completion/completions/quillon" "$@" | sort | tr '\n' ' '
}
got=$(complete_words quillon '')
[[ $got == "--help --version info inspect links metadata package preflight presets schema verify " ]] || fail "commands offered: $got"
got=$(complete_words quillon presets '')
[[ $got == "--help delete export import list new rename set show use " ]] || fail "presets commands offered: $got"
got=$(complete_words quillon preflight --search)
[[ $got == "--search-links " ]] || fail "preflight options offered: $got"

# Every command the program has is offered: one added later must reach the completion too.
for command in $("$prefix/bin/quillon" --help | sed -n '/^Subcommands:/,/^$/p' | awk 'NR > 1 && /^  [a-z]/ {print $1}'); do
    [[ " $(complete_words quillon '') " == *" $command "* ]] || fail "command $command is not completed"
done
# Every long option each command's --help lists is completed by bash, and named in the zsh
# completion and the manual page.
subcommands() { "$prefix/bin/quillon" "$@" --help | sed -n '/^Subcommands:/,/^$/p' | awk 'NR > 1 && /^  [a-z]/ {print $1}'; }
targets=()
for command in $(subcommands); do
    nested=$(subcommands "$command")
    if [[ -z $nested ]]; then targets+=("$command"); else for sub in $nested; do targets+=("$command $sub"); done; fi
done
for target in "${targets[@]}"; do
    offered=" $(complete_words quillon $target --)"
    for option in $("$prefix/bin/quillon" $target --help | sed -n '/^Options:/,/^$/p' | grep -oE '^  (-[a-zA-Z],)?--[a-z-]+' | sed 's/.*,//'); do
        [[ $offered == *" $option "* ]] || fail "the bash completion of '$target' lacks $option"
        [[ $option == --help ]] && continue
        grep -qE -- "(^|[^a-z-])$option([^a-z-]|\$)" "$source/completions/_quillon" || fail "the zsh completion lacks $option"
        grep -qF -- "${option//-/\\-}" "$source/docs/quillon.1" || fail "the manual page lacks $option"
    done
done
grep -q '^\.TH QUILLON 1' "$source/docs/quillon.1" || fail "manual page header"
echo "install test passed"
