#!/usr/bin/env bash
# The sandbox's updater: notes that it ran, and replaces nothing.
set -euo pipefail

SANDBOX_HOME=@HOME@
if [[ $(cd "$HOME" && pwd -P) != "$SANDBOX_HOME" ]]; then
    echo "Отказ: песочница обновляется только в $SANDBOX_HOME, а не в $HOME"
    exit 1
fi
printf '%s update\n' "$(date '+%Y-%m-%d %H:%M:%S')" >>"$HOME/MeetingNotes/.sandbox-updates.log"
sleep "${MURMELI_SANDBOX_PACE:-@PACE@}"
echo 'Это песочница: обновление ничего не заменило.'
