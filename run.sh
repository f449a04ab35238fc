#!/usr/bin/env bash
# Builds the helper and runs it: in this desktop session if there is one, or else, and with --demo, in one of its own.
source "$(dirname "${BASH_SOURCE[0]}")/scripts/common.sh"

case ${1:-} in
  "" | --demo) ;;
  *)
    echo "Usage: ./run.sh [--demo]" >&2
    exit 2
    ;;
esac

# in_session: whether a helper would find a screen and a session bus here.
in_session() {
  [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]] &&
    { [[ -n ${DBUS_SESSION_BUS_ADDRESS:-} ]] || [[ -S ${XDG_RUNTIME_DIR:-/run/user/$EUID}/bus ]]; }
}

sections=(build)
if [[ ${1:-} == --demo ]] || ! in_session; then
  sections+=(desktop)
fi
install_packages "${sections[@]}"

cd "$root"
cmake --preset release -DBUILD_TESTING=OFF
cmake --build --preset release --target stage agent_simulator

stage=$root/build/release/stage/lib/quorvale/Quorvale.app
helper=$stage/Contents/Library/LoginItems/QuorvaleHelper.app/Contents/Linux/QuorvaleHelper
if [[ ${#sections[@]} -eq 1 ]]; then
  echo "The helper runs in this session; Ctrl+C ends it."
  exec "$helper"
fi
exec scripts/desktop_session scripts/demo "$helper" build/release/tools/agent_simulator/agent_simulator "$root/out/demo"
