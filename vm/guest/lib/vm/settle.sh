#!/bin/sh
# Waiting for udev, for other scripts to source.

# shellcheck source=wait.sh
. /lib/vm/wait.sh

# settle: waits until udev has handled all events so far. It is asked again when it fails: the
# daemon drops a caller whose first message comes while it accepts the connection.
settle() { wait_for 60 udevadm settle --timeout=30; }
