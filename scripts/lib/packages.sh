# need_packages NAME...: sees to it that these Debian packages are there. Installs the missing ones as root without a
# question; without root it says in one line what to install and fails. For sourcing.
need_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query --show --showformat '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if [ "$(id -u)" -ne 0 ]; then
        echo "please install: apt-get install ${missing[*]}" >&2
        return 1
    fi
    echo "installing: ${missing[*]}"
    local quiet=(env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0)
    "${quiet[@]}" update </dev/null && "${quiet[@]}" install --yes --no-install-recommends "${missing[@]}" </dev/null >/dev/null
}

build_packages=(cmake ninja-build g++ libicu-dev)
test_packages=(libgtest-dev binutils)
check_packages=(clang clang-format clang-tidy libbenchmark-dev)
windows_packages=(g++-mingw-w64-x86-64-posix googletest wine wine64)
