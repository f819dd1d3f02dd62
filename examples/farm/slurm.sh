#!/usr/bin/env bash
# Builds the shaders of a manifest on a Slurm cluster, as a job array with one shard for each task:
#
#   sbatch --array=1-64 slurm.sh 64 MANIFEST CACHE [OPTION..]
#
# The number is that of all shards, also when only some of them are submitted again (--array=7,12). Manifest, what it
# names and CACHE lie in folders that all nodes share. A task whose node dies is put into the queue again by Slurm and
# goes on where it was: what is done lies in the output folder.
#SBATCH --job-name=shaders
#SBATCH --output=shaders-%A-%a.log
#SBATCH --requeue
#SBATCH --open-mode=append
#SBATCH --ntasks=1
#SBATCH --cpus-per-task=1
set -euo pipefail
shards=$1 manifest=$2 cache=$3
shift 3
echo "shard $SLURM_ARRAY_TASK_ID of $shards on $SLURMD_NODENAME, start $((${SLURM_RESTART_COUNT:-0} + 1))"
exec "${SFG:-sfg}" build "$manifest" --shard "$SLURM_ARRAY_TASK_ID/$shards" --cache "$cache" \
  --jobs "${SLURM_CPUS_PER_TASK:-1}" "$@"
