#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
#SBATCH --job-name=tarnel
#SBATCH --array=1-4
#SBATCH --ntasks=1
#SBATCH --cpus-per-task=1
#SBATCH --requeue
#SBATCH --open-mode=append
#SBATCH --signal=B:TERM@60
# One run over many nodes: each task of the array takes its share of the list and keeps its results apart.
#
# usage: sbatch [--array=1-N] tarnel-array.sh RESULTS SCRIPT LIST [OPTION...]
#
# RESULTS is a folder that all nodes see. The shares go to RESULTS/JOB/1 ... RESULTS/JOB/N, so that a task
# that starts again finds its own; further options go to tarnel run. $TARNEL names the program when it is
# not on the path.
set -u
if [ $# -lt 3 ]; then
  echo "usage: sbatch [--array=1-N] tarnel-array.sh RESULTS SCRIPT LIST [OPTION...]" >&2
  exit 2
fi
tarnel=${TARNEL:-tarnel} script=$2 list=$3
data=$1/${SLURM_ARRAY_JOB_ID:?this script runs as a job array}/$SLURM_ARRAY_TASK_ID
shift 3
if [ "$SLURM_ARRAY_TASK_MIN" != 1 ] || [ "$SLURM_ARRAY_TASK_MAX" != "$SLURM_ARRAY_TASK_COUNT" ]; then
  echo "tarnel-array.sh: the tasks must count from 1: --array=1-N" >&2
  exit 2
fi

# Slurm tells this shell that the time is over or that somebody else needs the node; the run then saves
# what it has done and ends.
child=
trap '[ -z "$child" ] || kill -TERM "$child"' TERM

run() {
  "$tarnel" run --data-dir "$data" "$@" &
  child=$!
  wait "$child"
  status=$?
  # The wait ends early at a signal to this shell.
  while kill -0 "$child" 2>/dev/null; do
    wait "$child"
    status=$?
  done
  child=
}

# A run that was killed (status 137: no memory, an operator, a node that went down) goes on where it was, and
# tries the drawing that it had in work again. The third time something is wrong that needs a person.
for attempt in 1 2 3; do
  if [ -e "$data/Ovrix/TarnelRunner.xml" ]; then
    run --resume --retry failed "$@"
  else
    run --script "$script" --list "$list" --shard "$SLURM_ARRAY_TASK_ID/$SLURM_ARRAY_TASK_COUNT" "$@"
  fi
  [ "$status" = 137 ] || break
  echo "tarnel-array.sh: the run was killed (attempt $attempt of 3)" >&2
done
exit "$status"
