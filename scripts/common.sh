# Shared by the scripts of this folder: where the tree is, and what a build needs. Sourced, not run.

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

packages="g++ cmake ninja-build ccache mold qt6-base-dev libqt6sql6-sqlite libsqlite3-dev libcpp-httplib-dev libgtest-dev libxml2-utils python3-yaml"

# Installs the packages that are missing; asks the package lists only if there are any.
install_packages() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null)" = "ii " ] || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "Missing packages: ${missing[*]}. Install them, or install sudo so that this script can." >&2
            return 1
        }
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq -o Dpkg::Use-Pty=0 --no-install-recommends "${missing[@]}" >/dev/null
}

# Installs node and the packages that the tests use, as their lock files tell.
install_node_packages() {
    # A node of another origin than the distribution's brings its own npm.
    command -v npm >/dev/null || install_packages nodejs npm
    local folder
    for folder in "$top/tests/mcp_client" "$top/tests/eds_reader" "$top/tests/dbc_reader" "$top/tests/page"; do
        [ "$folder/node_modules/.package-lock.json" -nt "$folder/package-lock.json" ] && continue
        (cd "$folder" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error)
    done
}

# Lets programs have their temporary files in memory, where there are two gigabytes of it: tests write many small ones, each
# of which a disk takes its time for.
use_memory_for_temporary_files() {
    [ -n "${TMPDIR:-}" ] || [ ! -w /dev/shm ] && return
    [ "$(df --output=avail -k /dev/shm | tail -n 1)" -lt 2000000 ] && return
    TMPDIR=$(mktemp -d /dev/shm/ncx_tests.XXXXXX)
    chmod 1777 "$TMPDIR" # as /tmp is: some tests give up the rights of root
    export TMPDIR
    # shellcheck disable=SC2064
    trap "rm -rf '$TMPDIR'" EXIT
}

# Configures a preset where that has not been done yet, and builds the named targets, or all.
build_preset() {
    local preset=$1
    shift
    local folder="$top/build"
    [ "$preset" = dev ] || folder="$top/build-$preset"
    [ -f "$folder/build.ninja" ] || (cd "$top" && cmake --preset "$preset" >/dev/null)
    cmake --build "$folder" ${1:+--target "$@"}
}
