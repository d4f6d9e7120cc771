# shellcheck shell=bash
# What the package checks share; to be sourced.

checks=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
unset LD_LIBRARY_PATH # Installed libraries find each other without it.

step() { printf '== %s\n' "$*"; }
fail() {
    printf 'package: %s\n' "$*" >&2
    exit 1
}

# Shows what a command printed only when it fails.
quietly() {
    local output
    output=$("$@" 2>&1) || { printf '%s\n' "$output" >&2; return 1; }
}

# refused TEXT COMMAND...: the command has to fail, and to say TEXT.
refused() {
    local text=$1 output
    shift
    if output=$("$@" 2>&1); then
        fail "not refused: $*"
    fi
    # CMake wraps its messages.
    output=$(tr -s '[:space:]' ' ' <<<"$output")
    [[ $output == *"$text"* ]] || fail "'$text' is not in: $output"
}

# names_none_of PREFIX FOLDER...: no file installed in PREFIX names one of the folders.
names_none_of() {
    local prefix=$1
    shift
    ! grep -rlF "${@/#/-e}" "$prefix" || fail "these files name one of: $*"
}

# make_framework NAME FOLDER HEADERS: a framework of a host's own, whose log prints NAME before each
# line. HEADERS has pdk/include.
make_framework() {
    local compile=(g++ -std=c++17 -fPIC -shared -Wall -Wextra -Werror -I"$3")
    mkdir -p "$2"
    echo "extern const char frameworkName[] = \"$1\";" |
        "${compile[@]}" "$checks/framework/zepdk.cpp" -x c++ - -o "$2/libzepdk_4_4ST.so" -lACE
    "${compile[@]}" "$checks/framework/zeutil.cpp" -o "$2/libzeutilST.so" -lACE
    "${compile[@]}" "$checks/framework/zecmn.cpp" -o "$2/libzecmn_4_4ST.so" \
        -L"$2" -lzepdk_4_4ST -lACE -Wl,-soname,libzecmn_4_4ST.so
}

# prints_and_traces HOST TRACE... <OUTPUT: the host prints OUTPUT, and its framework each line that
# begins with a TRACE.
prints_and_traces() {
    local host=$1 traced line
    shift
    traced=$("$host" 2>&1 >/dev/null)
    diff - <("$host" 2>/dev/null)
    for line; do
        grep -q "^$line" <<<"$traced" || fail "$host did not trace '$line'"
    done
}

# cmake_hosts FOLDER PREFIX HOSTS [OPTION...]: builds hosts of the installation in PREFIX. HOSTS are
# their sources with semicolons between them; the program of NAME.cpp is FOLDER/NAME.
cmake_hosts() {
    local folder=$1 prefix=$2 hosts=$3
    shift 3
    quietly cmake -S "$checks" -B "$folder" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DHOSTS="$hosts" "$@" && quietly cmake --build "$folder"
}

# pkg_config_hosts FOLDER PREFIX HOSTS [OPTION...]: the same with pkg-config.
pkg_config_hosts() {
    local folder=$1 prefix=$2 hosts=$3 host flags variable
    shift 3
    mkdir -p "$folder"
    PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name dmpclaim.pc)")
    export PKG_CONFIG_PATH
    read -ra flags < <(pkg-config "$@" --cflags --libs dmpclaim)
    for variable in frameworkdir libdir; do # as README: stand-ins may be beside the library
        flags+=("-Wl,-rpath,$(pkg-config "$@" --variable="$variable" dmpclaim)")
    done
    for host in ${hosts//;/ }; do
        g++ -std=c++17 -Wall -Wextra -Werror "$host" -o "$folder/$(basename "$host" .cpp)" \
            "${flags[@]}"
    done
}
