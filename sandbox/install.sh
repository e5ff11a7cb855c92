#!/usr/bin/env bash
# Installs the sandbox's engine into the sandbox's home. Run again, it goes on where it stopped.
set -euo pipefail

ORIGIN=@ORIGIN@
SANDBOX_HOME=@HOME@
FAIL_AT=@FAIL_AT@
STEPS=@STEPS@
ENGINE_FILES=@ENGINE_FILES@
PACE=${MURMELI_SANDBOX_PACE:-@PACE@}
NOTES=$HOME/MeetingNotes
PIPELINE=$NOTES/pipeline
MODELS=$HOME/.cache/huggingface/hub
STEP=

marker() { [[ ${MURMELI_UI:-} != 1 ]] || printf '@@%s\n' "$1"; }
line() { printf '%s\n' "$1"; }
bright() {
    if [[ ${MURMELI_UI:-} == 1 ]]; then printf '\033[1;36m%s\033[0m\n' "$1"; else line "$1"; fi
}
problem() {
    if [[ ${MURMELI_UI:-} == 1 ]]; then printf '\033[31m%s\033[0m\n' "$1"; else line "$1"; fi
}
fetch() { # PATH FILE: the file is there whole or not at all
    curl -fsS --noproxy '*' --max-time 30 "$ORIGIN$1" -o "$2.part" </dev/null
    mv -f "$2.part" "$2"
}
work() { # shows progress for one pace
    local part percent
    part=$(LC_ALL=C awk -v pace="$PACE" 'BEGIN { print pace / 5 }' </dev/null)
    for percent in 20 40 60 80 100; do
        sleep "$part"
        marker "progress|$STEP|$percent"
    done
}

has_system() { [[ -e $NOTES/.sandbox-system ]]; }
do_system() {
    line "Система: $(uname -sm)"
    local tool
    for tool in curl python3; do
        command -v "$tool" >/dev/null || { problem "Не найдена программа $tool"; return 1; }
    done
    sleep "$PACE"
    mkdir -p "$NOTES"
    touch "$NOTES/.sandbox-system"
}

has_app() { [[ -s $NOTES/update.sh ]]; }
do_app() {
    sleep "$PACE"
    fetch /app/update.sh "$NOTES/update.sh"
    chmod +x "$NOTES/update.sh"
}

has_venv() { [[ -x $NOTES/.venv/bin/python ]]; }
do_venv() {
    mkdir -p "$NOTES/.venv/bin"
    work
    # The interpreter itself: a launcher that goes by its own name would not know itself under this one.
    ln -sfn "$(python3 -c 'import sys; print(sys.executable)' </dev/null)" "$NOTES/.venv/bin/python"
}

has_engine() {
    local file
    for file in $ENGINE_FILES; do [[ -s $PIPELINE/$file ]] || return 1; done
}
do_engine() {
    mkdir -p "$PIPELINE"
    sleep "$PACE"
    local file
    for file in $ENGINE_FILES; do
        line "  $file"
        fetch "/app/engine/$file" "$PIPELINE/$file"
    done
}

has_asr() { [[ -e $NOTES/.venv/.sandbox-asr ]]; }
do_asr() { work; touch "$NOTES/.venv/.sandbox-asr"; }

has_models() { [[ -d $MODELS ]]; }
do_models() {
    line 'Модели в песочнице ничего не весят.'
    work
    mkdir -p "$MODELS" # last of all: whoever finds it takes the models for complete
}

has_service() { false; } # only the server knows whether it runs, and it starts nothing twice
do_service() {
    sleep "$PACE"
    curl -fsS --noproxy '*' --max-time 30 -X POST "$ORIGIN/sandbox/service/start" </dev/null >/dev/null
}

title() {
    case $1 in
        system) echo 'Проверяю систему' ;;
        app) echo 'Готовлю приложение' ;;
        venv) echo 'Готовлю Python' ;;
        engine) echo 'Загружаю движок' ;;
        asr) echo 'Ставлю распознавание речи' ;;
        models) echo 'Загружаю модели' ;;
        service) echo 'Запускаю службу' ;;
    esac
}

run_step() {
    marker "start|$STEP"
    bright "$(title "$STEP")"
    if [[ $STEP == "$FAIL_AT" ]]; then
        problem 'Ошибка: так попросили в песочнице.'
        exit 1
    fi
    if "has_$STEP"; then
        line 'Уже готово.'
    else
        "do_$STEP"
    fi
    marker "done|$STEP"
}

tell_failure() {
    local status=$?
    if ((status)) && [[ -n $STEP ]]; then
        marker "fail|$STEP"
        exit 1
    fi
}

# One function, read whole before it begins: the script itself comes through standard input.
install() {
    if [[ $(cd "$HOME" && pwd -P) != "$SANDBOX_HOME" ]]; then
        problem "Отказ: песочница ставится только в $SANDBOX_HOME, а не в $HOME"
        exit 1
    fi
    if [[ ! $PACE =~ ^[0-9]+(\.[0-9]+)?$ ]]; then
        problem "MURMELI_SANDBOX_PACE — число секунд, а не «$PACE»"
        exit 1
    fi
    trap tell_failure EXIT
    for STEP in $STEPS; do run_step; done
    STEP=
    bright 'Готово: движок песочницы установлен.'
}

install
