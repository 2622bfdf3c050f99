# shellcheck shell=bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Sourced by ./run and scripts/bench: a JACK server without sound hardware, and the virtual
# instrument on it. Who starts them calls trn_stop_service in a trap, so that neither outlives it.

# One fixed name: JACK keeps a slot for every server that was killed until one of its name starts.
export JACK_DEFAULT_SERVER=trn JACK_NO_START_SERVER=1
trn_jack_pid='' trn_instrument_pid=''

# trn_stop PID: SIGTERM, and SIGKILL if it is still there after ten seconds. Gives its exit code.
trn_stop() {
    local tries=100
    kill -TERM "$1" 2>/dev/null
    while kill -0 "$1" 2>/dev/null; do
        tries=$((tries - 1))
        [ $tries -gt 0 ] || kill -KILL "$1" 2>/dev/null
        sleep 0.1
    done
    wait "$1" 2>/dev/null
}

trn_stop_instrument() {
    local pid=$trn_instrument_pid
    trn_instrument_pid=''
    [ -z "$pid" ] || trn_stop "$pid"
}

trn_stop_service() {
    # The server last: a client whose server is gone may wait for it.
    trn_stop_instrument
    local pid=$trn_jack_pid
    trn_jack_pid=''
    [ -z "$pid" ] || trn_stop "$pid"
}

trn_jack_runs() {
    jack_wait -s "$JACK_DEFAULT_SERVER" -c 2>/dev/null | grep -qx running
}

# trn_start_jack FOLDER: its log goes there. Synchronous (-S): asynchronously the dummy driver loses
# messages between slow clients.
trn_start_jack() {
    if trn_jack_runs; then
        echo "a JACK server called $JACK_DEFAULT_SERVER is running already; is another ./run at work?" >&2
        return 1
    fi
    jackd -n "$JACK_DEFAULT_SERVER" -S -r -d dummy >"$1/jackd.log" 2>&1 </dev/null &
    trn_jack_pid=$!
    local tries
    for tries in 1 2 3 4 5 6 7 8 9 10; do
        jack_wait -s "$JACK_DEFAULT_SERVER" -w -t 1 >/dev/null 2>&1
        if ! kill -0 "$trn_jack_pid" 2>/dev/null; then
            trn_jack_pid=''
            break
        elif trn_jack_runs; then
            return 0
        fi
    done
    echo "jackd is $([ -n "$trn_jack_pid" ] && echo "not ready after $tries s" || echo gone). It said:" >&2
    sed 's/^/    /' "$1/jackd.log" >&2
    [ -w /dev/shm ] || echo "/dev/shm can't be written; JACK keeps its shared memory there" >&2
    return 1
}

# trn_start_instrument FOLDER BIN-FOLDER ARGUMENT...: on the running JACK server; returns when its
# ports are there.
trn_start_instrument() {
    local folder=$1 bin=$2 line
    shift 2
    rm -f "$folder/ready"
    mkfifo "$folder/ready" || return 1
    "$bin/virtual-instrument" --midi jack "$@" >"$folder/ready" 2>"$folder/instrument.log" </dev/null &
    trn_instrument_pid=$!
    # Left open: what the program says later must not end it.
    exec {trn_ready}<"$folder/ready"
    if ! read -r -t 30 -u "$trn_ready" line || [ "$line" != ready ]; then
        sed 's/^/    /' "$folder/instrument.log" >&2
        return 1
    fi
}
