#!/usr/bin/env bash
# Builds shaders on a Slurm cluster of two nodes on this machine, one of which is killed half-way:
# slurm_test.sh SFG EXTENSION_TARGET WORK_FOLDER. Status 77 where there is no Slurm, or no right to run it.
set -euo pipefail
sfg=$1 target=$2 work=$3
sources=$(cd "$(dirname "$0")/../.." && pwd)

skip() {
  echo "skipped: $*"
  exit 77
}
fail() {
  echo "$*" >&2
  tail -n 5 "$work"/*.log >&2 || true
  exit 1
}

for program in munged slurmctld slurmd sbatch scontrol squeue unshare; do
  PATH=$PATH:/usr/sbin command -v $program >/dev/null || skip "$program is not installed (Debian: slurmctld, slurmd, slurm-client, munge)"
done
[ "$(id -u)" -eq 0 ] || skip 'slurmd is run by root'
unshare --pid --fork --mount-proc true 2>/dev/null || skip 'processes get no name space of their own here'
PATH=$PATH:/usr/sbin
rm -rf "$work"
mkdir -p "$work"
cd "$work"

# Everything that is started here, to be stopped in the end: each is a name space of processes or one process.
started=()
stop_all() {
  for pid in "${started[@]}"; do kill -9 "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$keys"
}
keys=$(mktemp -d)
trap stop_all EXIT

# Three ports that nobody uses.
port=$((20000 + $$ % 20000))
while (: <>"/dev/tcp/127.0.0.1/$port") 2>/dev/null || (: <>"/dev/tcp/127.0.0.1/$((port + 1))") 2>/dev/null ||
  (: <>"/dev/tcp/127.0.0.1/$((port + 2))") 2>/dev/null; do port=$((port + 3)); done

host=$(hostname -s)
export SLURM_CONF=$keys/slurm.conf
cat >"$SLURM_CONF" <<END
ClusterName=test
SlurmctldHost=$host(127.0.0.1)
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
CredType=cred/munge
AuthInfo=socket=$keys/munge.socket
SlurmctldPort=$port
StateSaveLocation=$keys/state
SlurmctldPidFile=$keys/slurmctld.pid
SlurmctldLogFile=$work/slurmctld.log
SlurmdPidFile=$keys/%n.pid
SlurmdLogFile=$work/slurmd.%n.log
SlurmdSpoolDir=$keys/spool.%n
SwitchType=switch/none
ProctrackType=proctrack/pgid
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
ReturnToService=2
SlurmdDebug=debug
MpiDefault=none
SchedulerParameters=sched_interval=1
NodeName=one NodeHostname=$host NodeAddr=127.0.0.1 Port=$((port + 1)) CPUs=1
NodeName=two NodeHostname=$host NodeAddr=127.0.0.1 Port=$((port + 2)) CPUs=1
PartitionName=all Nodes=one,two Default=YES
END
mkdir "$keys/state" "$keys/spool.one" "$keys/spool.two"
(umask 077 && head -c 1024 /dev/urandom >"$keys/munge.key")

# start NAME COMMAND..: leaves the process in `pid`.
start() {
  local name=$1
  shift
  "$@" >"$work/$name.out" 2>&1 &
  pid=$!
  started+=("$pid")
}
# A node is all that its daemon has started; it dies as a whole.
start_node() {
  start "slurmd.$1" unshare --pid --fork --kill-child --mount-proc slurmd -D -N "$1"
}
# within SECONDS WHAT COMMAND..: waits until the command succeeds.
within() {
  local end=$((SECONDS + $1)) what=$2
  shift 2
  until "$@" >/dev/null 2>&1; do
    [ "$SECONDS" -lt "$end" ] || fail "no $what in time"
    sleep 0.05
  done
}

start munged munged --foreground --force --socket="$keys/munge.socket" --key-file="$keys/munge.key" \
  --pid-file="$keys/munged.pid" --log-file="$keys/munged.log" --seed-file="$keys/munged.seed"
within 90 munge test -S "$keys/munge.socket"
start slurmctld slurmctld -D
start_node one
start_node two
node_two=$pid
idle() { [ "$(sinfo -h -N -n "$1" -o '%T')" = idle ]; }
within 180 'idle first node' idle one
within 180 'idle second node' idle two

# Materials, different by a constant: as many as keep two nodes busy for a second.
count=120
[ "$target" != assembled ] || count=1500
mkdir -p farm/graphs
for i in $(seq $count); do
  sed "s/\"scale\": { \"value\": \[2.0, 2.0\] }/\"scale\": { \"constant\": [2.0, $i.5] }/" \
    "$sources/examples/materials/mossy_wall.json" >"farm/graphs/m$i.json"
done
grep -q "2.0, $count.5" "farm/graphs/m$count.json" || fail 'the materials are all the same'
cat >farm/manifest.json <<END
{ "libraries": ["$sources/library"], "output": "shaders",
  "shaders": [ { "graphs": ["graphs"], "targets": ["$target"] } ] }
END
outputs() { find "$1" -type f -name 'm*' ! -path '*/.sfg-build/*' | wc -l; }
mkdir -p farm/shaders

job=$(SFG=$sfg sbatch --parsable --array=1-2 --output="$work/shard.%a.log" "$sources/examples/farm/slurm.sh" \
  2 "$work/farm/manifest.json" "$work/cache")
on_two() { grep -l ' on two, ' "$work"/shard.*.log; }
within 180 'shard on the second node' on_two
log=$(on_two)
shard=${log#"$work/shard."}
shard=${shard%.log}
some_done() { [ "$(outputs farm/shaders)" -ge 8 ]; }
within 360 'shaders' some_done

# The power goes; somebody says so, which Slurm finds out in some minutes otherwise.
kill -9 "$node_two"
wait "$node_two" 2>/dev/null || true
squeue -h -j "${job}_$shard" -o '%T %N' | grep -q 'RUNNING two' || fail 'the shard was done before its node was killed'
scontrol update NodeName=two State=DOWN Reason=killed
done_before=$(find farm/shaders -type f -name 'm*' ! -path '*/.sfg-build/*' | sort | xargs stat -c '%n %i' )
requeued() { squeue -h -j "${job}_$shard" -o '%T' | grep -q PENDING; }
within 180 'requeued shard' requeued
scontrol hold "${job}_$shard"
ends_told() { grep -c '_rpc_terminate_job' "$work/slurmd.two.log" || true; }
ends_before=$(ends_told)
start_node two
within 180 'second node' idle two
# The controller goes on sending the node that the shard's first run is over. Another run on it would take that for its
# own end, so it starts when the message has come.
end_told() { [ "$(ends_told)" -gt "$ends_before" ]; }
within 270 'end of the first run' end_told
scontrol release "${job}_$shard"
scontrol update JobId="${job}_$shard" StartTime=now
finished() { [ -z "$(squeue -h -j "$job")" ]; }
within 480 'end of the jobs' finished

grep -q ', start 2$' "$log" || fail "the shard was not started again: $(cat "$log")"
[ "$(outputs farm/shaders)" = $count ] || fail "there are $(outputs farm/shaders) shaders of $count"

# What was done by then was not done again.
again=0
while read -r file number; do
  [ "$(stat -c %i "$file")" = "$number" ] || again=$((again + 1))
done <<<"$done_before"
[ "$again" -eq 0 ] || fail "$again shaders that were done were made again"

# One machine makes the same bytes without shards and cache.
sed 's/"output": "shaders"/"output": "alone"/' farm/manifest.json >farm/alone.json
"$sfg" build farm/alone.json --cache "$work/other_cache" >alone.out 2>&1 || fail "$(cat alone.out)"
diff -r -x .sfg-build farm/shaders farm/alone || fail 'a farm makes other bytes than one machine'
echo "shard $shard was killed behind $(wc -l <<<"$done_before") of $count shaders and lost none"
