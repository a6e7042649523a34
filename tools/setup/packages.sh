# shellcheck shell=bash
# Finds which Debian packages are missing and installs them, for ./run, ./test and ./bench. To be sourced.
#
#     zuvo_need_packages PURPOSE...
#
# Purposes are those of packages.txt beside this file. Returns 0 once every package is there, 1 if one is not; it has
# then said what to type. On a terminal it lists what is missing and asks once; without one it installs only as root or
# where sudo asks for no password. A machine without dpkg is left as it is: the build itself says what it lacks.

zuvo_setup_folder="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"

# Another package run may hold apt's lock for as long as an unattended upgrade takes (seconds).
zuvo_apt_options=(-o DPkg::Lock::Timeout=500)

# Prints the entries of the purposes, one a line, each "package" or "package | alternative", without repeats.
zuvo_package_entries() {
    local purpose line entry wanted
    while IFS= read -r line; do
        line="${line%%#*}"
        read -r purpose entry <<<"$line"
        [[ -n "$purpose" ]] || continue
        for wanted in "$@"; do
            if [[ "$purpose" == "$wanted" ]]; then
                printf '%s\n' "$entry"
            fi
        done
    done <"$zuvo_setup_folder/packages.txt" | awk '!seen[$0]++'
}

# Prints the alternatives of an entry, one a line.
zuvo_alternatives() {
    printf '%s\n' "$1" | tr '|' '\n' | tr -d ' \t'
}

# Prints those of the given entries of which no alternative is installed.
zuvo_missing_entries() {
    local entry name names=() installed found
    for entry in "$@"; do
        while IFS= read -r name; do
            names+=("$name")
        done < <(zuvo_alternatives "$entry")
    done
    # dpkg-query ends with 1 as soon as one name is unknown to it, and still prints the others.
    installed="$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "${names[@]}" 2>/dev/null || true)"
    for entry in "$@"; do
        found=no
        while IFS= read -r name; do
            if grep -qxF "$name installed" <<<"$installed"; then
                found=yes
            fi
        done < <(zuvo_alternatives "$entry")
        [[ $found == yes ]] || printf '%s\n' "$entry"
    done
}

# Prints the name to install for an entry: the first alternative that apt knows, else the first.
zuvo_chosen_package() {
    local name first=""
    while IFS= read -r name; do
        first="${first:-$name}"
        if apt-cache show "$name" >/dev/null 2>&1; then
            printf '%s\n' "$name"
            return
        fi
    done < <(zuvo_alternatives "$1")
    printf '%s\n' "$first"
}

# Prints the names to install for the given entries, one a line.
zuvo_chosen_packages() {
    local entry
    for entry in "$@"; do
        zuvo_chosen_package "$entry"
    done
}

# Whether a person can be asked. CI systems that lend a terminal set CI.
zuvo_can_ask() {
    [[ -t 0 && -t 2 && -z "${CI:-}" ]]
}

# Runs a command with what stands before it ("" or "sudo" or "sudo -n"), once more if it fails: mirrors and locks have
# bad moments.
zuvo_twice() {
    "$@" || { echo "Once more: $*" >&2 && sleep "${ZUVO_SETUP_PAUSE_SECONDS:-3}" && "$@"; }
}

zuvo_print_commands() {
    local names
    mapfile -t names < <(zuvo_chosen_packages "$@")
    echo "Type this, then start again:" >&2
    echo "  sudo apt-get update && sudo apt-get install --no-install-recommends ${names[*]}" >&2
}

zuvo_need_packages() {
    local entries missing names answer prefix=()
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "No dpkg here, so no package is looked for. docs/architecture.md names what the build needs." >&2
        return 0
    fi
    mapfile -t entries < <(zuvo_package_entries "$@")
    mapfile -t missing < <(zuvo_missing_entries "${entries[@]}")
    if [[ ${#missing[@]} -eq 0 ]]; then
        return 0
    fi

    echo "These packages are missing:" >&2
    printf '  %s\n' "${missing[@]}" >&2
    if zuvo_can_ask; then
        read -r -p "Install them with apt-get now? [y/N] " answer || answer=""
        if [[ ! "$answer" =~ ^[yY] ]]; then
            zuvo_print_commands "${missing[@]}"
            return 1
        fi
    fi
    if [[ "$(id -u)" -ne 0 ]]; then
        if zuvo_can_ask && command -v sudo >/dev/null; then
            prefix=(sudo)
        elif sudo -n true 2>/dev/null; then
            prefix=(sudo -n)
        else
            zuvo_print_commands "${missing[@]}"
            return 1
        fi
    fi

    local apt=("${prefix[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q "${zuvo_apt_options[@]}")
    zuvo_twice "${apt[@]}" update >&2 || { echo "apt-get update failed." >&2 && return 1; }
    mapfile -t names < <(zuvo_chosen_packages "${missing[@]}")
    zuvo_twice "${apt[@]}" install -y --no-install-recommends "${names[@]}" >&2 ||
        { echo "apt-get install failed." >&2 && return 1; }

    mapfile -t missing < <(zuvo_missing_entries "${entries[@]}")
    if [[ ${#missing[@]} -ne 0 ]]; then
        echo "Still missing after the installation: ${missing[*]}" >&2
        return 1
    fi
}
