# A session of the scripts' own, so that nothing they start meets the person who started them.
# shellcheck shell=bash

# private_session FOLDER: from here on no display, bus or settings of the person is seen. FOLDER is
# made anew and holds the home folder and its kin; KESTRIN_SESSION marks every process started from
# here on. The script calls end_private_session on its way out.
private_session() {
  local folder=$PWD/$1 name
  if command -v ccache >/dev/null; then
    CCACHE_DIR=$(ccache --get-config cache_dir)
    export CCACHE_DIR
  fi
  for name in $(compgen -e); do
    case $name in
      DISPLAY | XAUTHORITY | SESSION_MANAGER | AT_SPI_* | DBUS_* | DESKTOP_* | GIO_* | GTK_* | \
        KDE_* | QT_* | TZ | WAYLAND_* | XDG_*) unset "$name" ;;
    esac
  done
  rm -rf "$folder"
  mkdir -p "$folder"/{config,data,state,cache}
  export HOME=$folder LC_ALL=C.UTF-8
  export CANBERRA_DRIVER=null # reminders are not heard
  export XDG_CONFIG_HOME=$folder/config XDG_DATA_HOME=$folder/data
  export XDG_STATE_HOME=$folder/state XDG_CACHE_HOME=$folder/cache
  # Sockets lie in here, and the path of a socket has to be short.
  XDG_RUNTIME_DIR=$(mktemp -d /tmp/kestrin-XXXXXX)
  export XDG_RUNTIME_DIR
  export KESTRIN_SESSION=$XDG_RUNTIME_DIR
}

# private_processes: the ids of the processes that carry the mark.
private_processes() {
  local mark=KESTRIN_SESSION=$KESTRIN_SESSION
  (
    unset KESTRIN_SESSION
    grep -lszxF "$mark" /proc/[0-9]*/environ | cut -d/ -f3 || true
  )
}

# end_private_session: whatever carries the mark is asked to end, then, after five seconds, made to.
end_private_session() {
  local signal left attempt
  [[ ${KESTRIN_SESSION-} ]] || return 0
  for signal in TERM KILL; do
    left=$(private_processes)
    [[ $left ]] || break
    # shellcheck disable=SC2086 # one word a process
    kill -s "$signal" $left 2>/dev/null || true
    for ((attempt = 0; attempt < 50; attempt++)); do
      [[ $(private_processes) ]] || break 2
      sleep 0.1
    done
  done
  rm -rf "$XDG_RUNTIME_DIR"
}
