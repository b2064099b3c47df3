#!/usr/bin/env bash
# cluster.sh FOLDER COMMAND...: runs a command on a Slurm of its own, two nodes of one core on this machine,
# whose files all lie in FOLDER. Needs root, as the daemons do, and Debian's slurm-wlm and munge.
set -euo pipefail
folder=$1
shift
host=$(hostname -s)
mkdir -p "$folder"/{munge,state,n1,n2}
chmod 755 "$folder" "$folder/munge"
dd if=/dev/urandom of="$folder/munge/key" bs=1 count=1024 status=none
chmod 400 "$folder/munge/key"
cat >"$folder/slurm.conf" <<CONF
ClusterName=test
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=26817
SlurmUser=root
AuthType=auth/munge
AuthInfo=socket=$folder/munge/socket
CryptoType=crypto/munge
StateSaveLocation=$folder/state
SlurmctldPidFile=$folder/slurmctld.pid
SlurmctldLogFile=$folder/slurmctld.log
SlurmdPidFile=$folder/%n/slurmd.pid
SlurmdLogFile=$folder/%n/slurmd.log
SlurmdSpoolDir=$folder/%n
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core_Memory
SlurmdParameters=config_overrides
ReturnToService=2
SchedulerParameters=batch_sched_delay=0,sched_interval=1
NodeName=n1 NodeHostname=$host NodeAddr=127.0.0.1 Port=26821 CPUs=1 RealMemory=4000
NodeName=n2 NodeHostname=$host NodeAddr=127.0.0.1 Port=26822 CPUs=1 RealMemory=4000
PartitionName=all Nodes=n1,n2 Default=YES MaxTime=INFINITE State=UP
CONF
export SLURM_CONF=$folder/slurm.conf
stop() {
    for pid in "$folder"/slurmctld.pid "$folder"/n?/slurmd.pid "$folder"/munge/pid; do
        [ ! -e "$pid" ] || kill "$(cat "$pid")" 2>/dev/null || true
    done
}
trap stop EXIT
munged --force --socket="$folder/munge/socket" --key-file="$folder/munge/key" --pid-file="$folder/munge/pid" \
    --log-file="$folder/munge/log" --seed-file="$folder/munge/seed"
slurmctld
slurmd -N n1
slurmd -N n2
for _ in {1..100}; do
    [ "$(sinfo --noheader --format=%T 2>/dev/null)" = idle ] && break
    sleep 0.2
done
[ "$(sinfo --noheader --format=%T)" = idle ] || { tail "$folder"/slurmctld.log "$folder"/n?/slurmd.log >&2; exit 1; }
"$@"
