# To be sourced: the data module on a pseudo-terminal, simulated by vrx2260sim at the line's own pace.
# Needs `bin`, the program's directory. The caller stops the module at the end.

simulator=

# play_module LINK SAID [OPTION]...: starts the module and returns when LINK is ready. The file SAID
# gets the simulator's output.
play_module() {
  local link=$1 said=$2
  shift 2
  : >"$said"
  "$bin/vrx2260sim" module --link "$link" "$@" >"$said" &
  simulator=$!
  for _ in $(seq 50); do
    grep -q '^ready' "$said" && return
    kill -0 "$simulator" || return 1
    sleep 0.1
  done
  echo "The simulated module does not get ready." >&2
  return 1
}

stop_module() {
  [ -n "$simulator" ] || return 0
  kill "$simulator" 2>/dev/null || true
  wait "$simulator" || true
  simulator=
}
