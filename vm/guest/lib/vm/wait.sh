#!/bin/sh
# Waiting with a deadline, for other scripts to source.

uptime_seconds() {
    read -r uptime _ </proc/uptime
    echo "${uptime%.*}"
}

# wait_for SECONDS COMMAND...: repeats the command until it succeeds; fails, and says so on
# standard error, when it still does not after that time.
wait_for() {
    deadline=$(($(uptime_seconds) + $1))
    shift
    until "$@"; do
        if [ "$(uptime_seconds)" -ge "$deadline" ]; then
            echo "gave up waiting for: $*" >&2
            return 1
        fi
        sleep 0.1
    done
}
