#!/usr/bin/env bash
# jobstatus.sh FOLDER NUMBER: running, success or failed, by the queue and by what the job left (submit.sh). A job
# that is gone from both was killed.
state=$(squeue --noheader --jobs="$2" --format=%T 2>/dev/null)
case $state in
PENDING | CONFIGURING | RUNNING | COMPLETING | SUSPENDED | STAGE_OUT | RESIZING) echo running ;;
*) if [ "$(cat "$1/$2.status" 2>/dev/null)" = 0 ]; then echo success; else echo failed; fi ;;
esac
