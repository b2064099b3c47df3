#!/usr/bin/env bash
# submit.sh MEMORY MINUTES FOLDER JOBSCRIPT: gives a job to Slurm and prints its number. MEMORY in MB. Where the
# job comes to its end it leaves its exit status in FOLDER/NUMBER.status, since clusters without accounting
# forget a job soon.
set -euo pipefail
mkdir -p "$3"
exec sbatch --parsable --job-name=study --ntasks=1 --cpus-per-task=1 --mem="$1" --time="$2" --output="$3/%j.log" \
    --no-requeue --wrap "bash '$4'; status=\$?; echo \$status >'$3/'\$SLURM_JOB_ID.status; exit \$status"
