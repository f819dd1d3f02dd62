#!/usr/bin/env bash
# Builds the shaders of a manifest on several machines with GNU parallel over ssh:
#
#   ssh.sh MACHINES SHARDS MANIFEST CACHE [OPTION..]
#
# MACHINES is a file with a machine a line, as ssh knows it (`:` is this one; `2/name` takes two shards at a time). The
# machines share the folders of the manifest, of what it names and of CACHE under the same paths, and have sfg. A shard
# that fails is given to another machine, three times at most; what it has done is not done again.
set -euo pipefail
[ $# -ge 4 ] || { sed -n '2,/^set/s/^# \{0,1\}//p' "$0" | sed '$d' >&2; exit 2; }
machines=$1 shards=$2 manifest=$3 cache=$4
shift 4
seq "$shards" | parallel --sshloginfile "$machines" --workdir . --joblog "shards.log" --tag --line-buffer --retries 3 \
  "${SFG:-sfg}" build "$manifest" --shard "{}/$shards" --cache "$cache" "$@"
