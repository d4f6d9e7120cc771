#!/bin/sh
# A program that has to be ended: it ignores SIGTERM, and so does the one that it has started.
trap '' TERM
sleep 30 &
sleep 30
