#!/bin/sh
# Checks a manual page: groff warns of nothing, and whatis finds its name.
#
# usage: check_page.sh PAGE
set -eu
warnings=$(groff -man -ww -z "$1" 2>&1)
if [ -n "$warnings" ]; then
    echo "$warnings"
    exit 1
fi
lexgrog "$1"
