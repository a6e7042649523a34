# shellcheck shell=bash
# A Debian 12 of its own, in which to try something as root. To be sourced by a script, which then has
#
#     fresh_isolate "$@"             the script once more in namespaces of its own; what follows runs there
#     fresh_make FOLDER [MIRROR]     a minimal Debian by debootstrap in FOLDER if none is there, and its mounts
#     inside COMMAND...              a command in it, with an environment that knows nothing of the caller's
#
# The mounts and the processes belong to these namespaces. However the script ends, by a failure or a signal as well, the
# kernel takes both away, and a folder that is removed afterwards holds no /dev of the machine.

fresh_folder=""

fresh_isolate() {
    [[ -z "${ZUVO_FRESH_ISOLATED:-}" ]] || return 0
    if [[ "$(id -u)" -ne 0 ]]; then
        echo "$(basename "$0") must be run as root: it makes a Debian and mounts into it." >&2
        exit 1
    fi
    local status=0 isolated
    ZUVO_FRESH_ISOLATED=1 unshare --mount --pid --fork --kill-child -- "$0" "$@" </dev/null &
    isolated=$!
    # Bash hears a signal at once while it waits for a job, but not while something runs in the foreground.
    trap 'kill -KILL "$isolated" || true; wait "$isolated" || true; exit 130' INT
    trap 'kill -KILL "$isolated" || true; wait "$isolated" || true; exit 143' TERM HUP
    wait "$isolated" || status=$?
    exit "$status"
}

# Prints where this machine has its Debian 12 from, or the mirror of everybody.
fresh_mirror() {
    local mirror
    # shellcheck disable=SC2016
    mirror="$(apt-get indextargets --format '$(REPO_URI)' 'Codename: bookworm' 'Component: main' 2>/dev/null |
        grep -m 1 '/debian/*$' || true)"
    printf '%s\n' "${mirror:-http://deb.debian.org/debian}"
}

fresh_make() {
    fresh_folder="$1"
    local mirror="${2:-$(fresh_mirror)}" place
    # The last file that debootstrap writes: a Debian that was broken off is made once more.
    if [[ ! -e "$fresh_folder/.made" ]]; then
        echo "== A Debian of its own, from $mirror"
        mkdir -p "$fresh_folder"
        debootstrap --variant=minbase --include=ca-certificates bookworm "$fresh_folder" "$mirror" \
            >"$fresh_folder/debootstrap.output" || { tail -n 20 "$fresh_folder/debootstrap.output" >&2 && return 1; }
        touch "$fresh_folder/.made"
    fi
    chmod 755 "$fresh_folder" # it is the root folder of users other than root as well, such as apt's own
    for place in dev sys; do
        mount --rbind "/$place" "$fresh_folder/$place"
    done
    mount -t proc proc "$fresh_folder/proc"
    cp /etc/resolv.conf "$fresh_folder/etc/resolv.conf"
    # The installer of a Debian writes it; debootstrap does not.
    if [[ ! -e "$fresh_folder/etc/hosts" ]]; then
        printf '127.0.0.1\tlocalhost\n::1\tlocalhost\n' >"$fresh_folder/etc/hosts"
    fi
}

inside() {
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        chroot "$fresh_folder" "$@"
}
