# Debian packages the project needs, and how they come onto the machine. Sourced by the scripts.
# shellcheck shell=bash

# One list a purpose; a purpose stands on others (see lists_of).
declare -A packages=(
  [build]="ca-certificates cmake g++ libabsl-dev libcanberra-dev libglib2.0-dev librsvg2-bin
    libsystemd-dev libxcb1-dev ninja-build nlohmann-json3-dev pkg-config qt6-base-dev"
  [run]="at-spi2-core dbus-bin dbus-daemon desktop-file-utils fonts-dejavu-core libcanberra-pulse
    shared-mime-info sound-theme-freedesktop tzdata"
  [screenless]="gir1.2-atspi-2.0 imagemagick openbox python3 python3-gi xdotool xvfb"
  [test]="appstream binutils dpkg-dev fish libglib2.0-bin libgmock-dev libgtest-dev libxml2-utils lintian
    man-db python3 xclip zsh"
  [package]="dpkg-dev git mmdebstrap util-linux"
  [trial]="at-spi2-core dbus dbus-daemon fonts-dejavu-core gir1.2-atspi-2.0 openbox procps python3
    python3-gi xdotool xvfb"
  [lint]="clang-format-14 clang-tidy-14 git python3 shellcheck"
)

# What has to be on PATH (or, with a leading @, known to pkg-config) where there is no apt.
declare -A needs=(
  [build]="cmake ninja c++ pkg-config rsvg-convert @libsystemd @gio-unix-2.0 @libcanberra @xcb"
  [run]="dbus-daemon"
  [screenless]="Xvfb openbox xdotool import python3"
  [test]="python3 nm xclip appstreamcli desktop-file-validate dpkg-shlibdeps fish gio lintian man
    xmllint zsh"
  [package]="dpkg-shlibdeps git mmdebstrap unshare"
  [lint]="clang-format clang-tidy git python3 shellcheck"
)

die() {
  printf '%s: %s\n' "${0##*/}" "$1" >&2
  exit 1
}

# lists_of PURPOSE: the lists that make up a purpose.
lists_of() {
  case $1 in
    build) echo build ;;
    run) echo build run ;;
    screenless) echo build run screenless ;;
    test) echo build run screenless test ;;
    package) echo build package ;;
    lint) echo build run screenless test lint ;; # configuring looks for what the tests start
    *) die "no list of packages is called \"$1\"; see scripts/lib/packages.sh" ;;
  esac
}

# without_apt PACKAGE... -- NEED...: says what belongs on the machine, and stops when it is not there.
without_apt() {
  local wanted=() need missing=()
  while [[ $1 != -- ]]; do
    wanted+=("$1")
    shift
  done
  shift
  for need in "$@"; do
    if [[ $need == @* ]]; then
      pkg-config --exists "${need#@}" 2>/dev/null || missing+=("${need#@} (library)")
    else
      command -v "$need" >/dev/null || missing+=("$need")
    fi
  done
  if ((${#missing[@]})); then
    printf 'There is no apt here, and these are missing: %s\n' "${missing[*]}" >&2
    printf 'Install what your system calls these Debian packages, then start again:\n' >&2
    printf '  %s\n' "${wanted[*]}" >&2
    exit 1
  fi
}

# with_apt PACKAGE...: installs what dpkg does not have. The package lists are fetched only then.
with_apt() {
  local package missing=() root=()
  for package in "$@"; do
    [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
      missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  if ((EUID)); then
    command -v sudo >/dev/null ||
      die "as root, run: apt-get install --no-install-recommends ${missing[*]}"
    root=(sudo)
    # Without a terminal nobody could type a password.
    [[ -t 0 ]] || root+=(-n)
  fi
  root+=(env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300)
  echo "Installing: ${missing[*]}"
  "${root[@]}" update </dev/null ||
    die "apt-get update failed; see above, then start again, or install by hand: ${missing[*]}"
  "${root[@]}" install --no-install-recommends "${missing[@]}" </dev/null ||
    die "apt-get install failed; see above, then start again, or install by hand: ${missing[*]}"
}

# ensure_packages PURPOSE: what the purpose needs is on the machine afterwards, or the script ends.
ensure_packages() {
  local list lists words wanted=() commands=()
  lists=$(lists_of "$1")
  for list in $lists; do
    read -rd '' -a words <<<"${packages[$list]}" || true
    wanted+=("${words[@]}")
    read -rd '' -a words <<<"${needs[$list]}" || true
    commands+=("${words[@]}")
  done
  if command -v apt-get >/dev/null && command -v dpkg-query >/dev/null; then
    with_apt "${wanted[@]}"
  else
    without_apt "${wanted[@]}" -- "${commands[@]}"
  fi
}
