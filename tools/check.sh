#!/usr/bin/env bash
# Checks the sources; a step of continuous integration.
#   format     the sources are formatted with clang-format
#   words      no markers of unfinished work or disabled tests, no absolute paths of a developer's machine
#   files      every source file is compiled
#   headers    every header has an include guard and is included by at least one source
#   arrows     every #include is an allowed edge between folders (tools/arrows.txt)
#   shell      the shell scripts pass ShellCheck
#   commands   the programs start other programs with argument lists, never through a shell
#   tidy       clang-tidy reports nothing in src/
# Arguments choose checks; the default is all of them. A failed check does not stop the others. Exit status 0 when
# all have passed.
set -uo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"
cd "$root" || exit 1

database=build/dev/compile_commands.json

# Tracked and untracked files that match, without the ignored ones.
project_files() {
    git ls-files --cached --others --exclude-standard -- "$@" | sort -u | while IFS= read -r file; do
        [[ ! -f $file ]] || printf '%s\n' "$file"
    done
}

check_format() {
    project_files '*.h' '*.cpp' | xargs -r -d '\n' clang-format --dry-run -Werror
}

check_words() {
    # Each word is split so that the check does not find it here.
    local words='TO''DO|FIX''ME|XX''X|HA''CK|GTEST_''SKIP|DISABLED''_|/ho''me/|/ro''ot/|/Us''ers/'
    ! project_files . | grep -v '^LICENSE$' | xargs -r -d '\n' grep -nIE "$words"
}

check_files() {
    local compiled joined missing
    compiled="$(sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$database")" || return 1
    # A unity build compiles generated files that include the sources.
    joined="$(sed -n '/\/Unity\//p' <<<"$compiled" | xargs -r -d '\n' sed -n 's/^#include "\(.*\)"$/\1/p')" || return 1
    compiled="$(printf '%s\n' "$compiled" "$joined" | sort -u)"
    missing="$(comm -23 <(project_files 'src/*.cpp' 'tests/*.cpp' 'bench/*.cpp' | sed "s|^|$root/|" | sort) \
        <(printf '%s\n' "$compiled"))"
    [[ -z $missing ]] || printf 'Not compiled: %s\n' "${missing//$'\n'/, }"
    [[ -n $compiled && -z $missing ]]
}

check_headers() {
    local header status=0
    while IFS= read -r header; do
        if [[ $(grep -m1 -vE '^(//.*)?$' "$header") != '#pragma once' ]]; then
            echo "$header: does not begin with #pragma once"
            status=1
        fi
        if ! grep -rqF --include='*.h' --include='*.cpp' -e "\"${header#*/}\"" src tests bench; then
            echo "$header: no source includes it"
            status=1
        fi
    done < <(project_files '*.h')
    return "$status"
}

check_arrows() {
    tools/arrows.py tools/arrows.txt src
}

check_shell() {
    {
        project_files '*.sh'
        project_files . | xargs -r -d '\n' grep -lIE -m1 '^#!.*\bsh|^#!.*bash'
    } | sort -u | xargs -r -d '\n' shellcheck --external-sources
}

# Calls that pass a string to a shell or split one into arguments, and the names of shells.
check_commands() {
    local calls='(^|[^.>[:alnum:]_])((std)?::)?(system|popen|wordexp|execlp?|posix_spawnp?)[[:space:]]*\('
    calls+='|(splitCommand|startCommand)[[:space:]]*\('
    local shells='"(/bin/|/usr/bin/)?(ba|da|z)?sh"|sh -c'
    ! project_files 'src/*.h' 'src/*.cpp' | xargs -r -d '\n' grep -nIE "$calls|$shells"
}

# clang-tidy cannot read the precompiled headers of GCC, so they are removed from the compile commands.
check_tidy() {
    local folder=build/tidy log=build/tidy/log
    mkdir -p "$folder"
    sed -E 's/ -Winvalid-pch -include [^ ]+//' "$database" >"$folder/compile_commands.json"
    if run-clang-tidy -quiet -p "$folder" "^$root/src/" >"$log" 2>&1 && grep -q "$root/src/" "$log"; then return; fi
    grep -vE '^([0-9]+ warnings? |Suppressed |Use -header-filter|\S*clang-tidy\S* )' "$log"
    return 1
}

checks=("$@")
((${#checks[@]})) || checks=(format words files headers arrows shell commands tidy)
tools/install-dependencies.sh tools/dependencies.txt tools/dependencies-ci.txt || exit 1
# The checks files and tidy read the compile commands. The check tidy also reads headers that the build makes.
if [[ " ${checks[*]} " =~ " files "|" tidy " ]]; then
    build_preset dev || exit 1
fi

# Without sources every check would pass.
if [[ -z $(project_files '*.cpp') ]]; then
    echo "check.sh: git lists no sources in this folder" >&2
    exit 1
fi

failed=()
for check in "${checks[@]}"; do
    if ! declare -F "check_$check" >/dev/null; then
        echo "check.sh: unknown check $check" >&2
        exit 1
    fi
    "check_$check" || failed+=("$check")
done
if ((${#failed[@]})); then
    echo "Checks failed: ${failed[*]}"
    exit 1
fi
echo "Checks passed: ${checks[*]}"
