#!/usr/bin/env bash
# Usage: check-fresh.sh [bookworm|trixie] [--remove]   runs the README's two commands on a minimal Debian, as a new user would
#
# The Debian is made anew below build/fresh/ and gets this machine's package sources and settings; the checkout in it is
# a clean clone of the last commit, and the user is not root. All of it runs in process and mount namespaces of its own:
# no process and no mount outlives this script. --remove also removes the folder.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
name=bookworm
remove=""
for argument in "$@"; do
    case $argument in
        bookworm | trixie) name=$argument ;;
        --remove) remove=1 ;;
        *)
            sed -n 2p "$0" >&2
            exit 2
            ;;
    esac
done
[ "$(id -u)" -eq 0 ] || { echo "check-fresh.sh: only root can make a Debian" >&2; exit 1; }
"$root/scripts/packages.sh" fresh
debian=$root/build/fresh/$name

say() {
    echo "check-fresh.sh: $*"
}

# inDebian COMMAND...: a command of the new Debian, by root. In the background, so that a signal to this script is not
# kept waiting; the namespace ends with the first process in it, and that one with this script, even if it is killed.
inDebian() {
    # shellcheck disable=SC2016
    setpriv --pdeathsig KILL unshare --mount --pid --fork --kill-child bash -e -c '
        mount --rbind /dev "$0/dev"
        mount -t proc proc "$0/proc"
        exec chroot "$0" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
    ' "$debian" "$@" </dev/null &
    running=$!
    wait $running
}

cleanUp() {
    [ -z "${running:-}" ] || { kill -KILL "$running" 2>/dev/null && wait "$running"; } || true
    [ -z "$remove" ] || rm -rf "$debian" "$debian.log"
}

# inCheckout COMMAND: a shell command in the clean clone, by the new user.
inCheckout() {
    inDebian su - neu -c "cd VelmoraInventor && $1"
}

packages() {
    # shellcheck disable=SC2016
    dpkg-query --admindir="$debian/var/lib/dpkg" -W -f='${Package} ${Installed-Size}\n' | sort
}

# The machine's own way to packages, whatever it is: sources, settings, keys, certificates.
copySettings() {
    local from
    # shellcheck disable=SC1091
    from=$(. /etc/os-release && echo "$VERSION_CODENAME")
    rm -rf "$debian/etc/apt"
    cp -a /etc/apt "$debian/etc/"
    find "$debian/etc/apt" -name '*sources*' -type f -exec sed -i "s/\b$from\b/$name/g" {} +
    find "$debian/etc/apt/sources.list.d" -type f -exec sed -i "s/\b$from\b/$name/g" {} +
    # Certificates of one's own: for apt as they are, and again where the installation of the package makes the new
    # Debian's own list from.
    mkdir -p "$debian"/{etc/ssl,usr/share/keyrings,usr/local/share/ca-certificates}
    cp -a -n /usr/share/keyrings/. "$debian/usr/share/keyrings/"
    cp -a /etc/ssl/certs "$debian/etc/ssl/"
    [ ! -d /usr/local/share/ca-certificates ] ||
        cp -a /usr/local/share/ca-certificates/. "$debian/usr/local/share/ca-certificates/"
    cp -L /etc/resolv.conf /etc/hosts "$debian/etc/"
}

# makeUser: the new user, where Debian puts one, with this machine's settings of npm and a clean clone.
makeUser() {
    local file home
    inDebian useradd --create-home --shell /bin/bash neu
    home=$debian$(awk -F: '$1 == "neu" { print $6 }' "$debian/etc/passwd")
    echo 'neu ALL=(ALL) NOPASSWD: ALL' >"$debian/etc/sudoers.d/neu"
    for file in "$(npm config get globalconfig 2>/dev/null)" "$(npm config get userconfig 2>/dev/null)"; do
        [ ! -f "$file" ] || cat "$file" >>"$home/.npmrc"
    done
    git clone -q --no-hardlinks "$root" "$home/VelmoraInventor"
    inDebian chown -R neu: "${home#"$debian"}"
}

makeDebian() {
    local site
    # shellcheck disable=SC2016
    site=$(apt-get indextargets --format '$(SITE) $(RELEASE)' 'Created-By: Packages' |
        sed -n 's/ [a-z]*$//p' | head -n 1)
    rm -rf "$debian"
    mkdir -p "$debian"
    debootstrap --variant=minbase "$name" "$debian" "$site" >"$debian.log" 2>&1 ||
        { tail "$debian.log" >&2; exit 1; }
    copySettings
    # What a user has who has cloned a repository.
    inDebian apt-get update -qq
    inDebian apt-get install -y -qq --no-install-recommends git sudo ca-certificates >>"$debian.log" 2>&1
    makeUser
}

# timed WHAT COMMAND...: says how long it took.
timed() {
    local what=$1 begin=$SECONDS
    "${@:2}"
    say "$name: $what took $((SECONDS - begin)) s"
}

trap cleanUp EXIT
trap 'exit 1' HUP INT TERM
timed "making the Debian" makeDebian
before=$(packages)
timed "scripts/demo.sh" inCheckout scripts/demo.sh
timed "scripts/test.sh" inCheckout scripts/test.sh
added=$(comm -13 <(echo "$before") <(packages))
say "$name: installed $(wc -l <<<"$added") packages, $(awk '{ sum += $2 } END { printf "%d", sum / 1024 }' <<<"$added") MB:"
cut -d' ' -f1 <<<"$added" | paste -sd ' '
say "$name: both commands ended with 0"
