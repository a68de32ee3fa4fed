#!/usr/bin/env bash
# Takes pictures of the monitor example: light and dark, with long names, with 200
# devices, and while it waits. The argument is the folder of the pictures, by default
# build/pictures. Needs no screen; with QT_QPA_PLATFORM=xcb the current screen is used.
set -euo pipefail
cd "$(dirname "$0")/.."

folder=${1:-build/pictures}
scripts/setup.sh build
cmake --preset debug >/dev/null
cmake --build --preset debug --target monitor simulationtool
mkdir -p "$folder"

export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} LC_ALL=C.UTF-8
bin=build/debug/bin
scratch=$(mktemp -d)
service=
stop_service() {
    [ -z "$service" ] || { kill "$service" && wait "$service"; } || true
    service=
}
trap 'stop_service; rm -rf "$scratch"' EXIT

# Starts a service and connects file descriptor 3 to it. All devices of a picture are
# registered over this connection.
start_service() {
    stop_service
    : >"$scratch/out"
    "$bin/simulationtool" service --address 127.0.0.1 --port 0 >"$scratch/out" 2>"$scratch/log" &
    service=$!
    until grep --quiet port "$scratch/out"; do
        kill -0 "$service" # ends this script when the service has ended
        sleep 0.1
    done
    port=$(grep --only-matching '[0-9]*$' "$scratch/out")
    exec 3<>"/dev/tcp/127.0.0.1/$port"
}

# device ID NAME MACHINE STATION TYPE LONGITUDE LATITUDE STATE: registers a device
# and reports its state, 0 to 3.
device() {
    cat >&3 <<EOF
<Command><RegisterSimulation Id="$1"><SimulationDevice>&lt;Device>
&lt;Id>$1&lt;/Id>&lt;Name>$2&lt;/Name>&lt;StationId>$4&lt;/StationId>&lt;StationName>$4&lt;/StationName>
&lt;Machine>$3&lt;/Machine>&lt;MachineId>$3&lt;/MachineId>&lt;DeviceType>$5&lt;/DeviceType>
&lt;PositionLongitude>$6&lt;/PositionLongitude>&lt;PositionLatitude>$7&lt;/PositionLatitude>
&lt;/Device></SimulationDevice></RegisterSimulation></Command>
<Command><SimulationDeveiceStateUpdate Id="$1"><State>&lt;State>
&lt;ScenarioDataState>$8&lt;/ScenarioDataState>&lt;/State></State></SimulationDeveiceStateUpdate></Command>
EOF
}

# picture NAME [OPTION...]: takes a light and a dark picture.
picture() {
    "$bin/monitor" --server "127.0.0.1:$port" "${@:2}" --picture "$folder/$1-light.png"
    "$bin/monitor" --server "127.0.0.1:$port" "${@:2}" --dark --picture "$folder/$1-dark.png"
    echo "$folder/$1-light.png, $1-dark.png"
}

start_service
device rx-1 "North tower" sim04 Harbour Receiver 10.0211 54.4312 2
device rx-2 "South tower" sim04 Harbour Receiver 10.0187 54.4203 2
device df-1 "Direction finder" sim05 Lighthouse "Direction finder" 10.1755 54.4560 1
device df-2 "Direction finder, reserve" sim05 Lighthouse "Direction finder" 10.1755 54.4561 0
device rd-1 "Coast radar" sim07 "Pilot station" Radar 10.2871 54.5002 3
device rd-2 "Harbour radar" sim07 Harbour Radar 10.1402 54.3395 2
picture onlooker
picture states --states

start_service
long="A receiver with a name that somebody has written in a single breath without ever thinking of columns"
device a "$long" "machine-$(printf '%080d' 1).simulation.example" "$long" "$long" -179.999999 -89.999999 2
device b "NoBlanksInThisName$(printf 'Receiver%.0s' {1..25})" sim04 "South" Receiver 10.1 54.3 3
device c "Short" sim04 "$long" Receiver 10.1 54.3 1
device d "&amp;lt;b>Not bold&amp;lt;/b>" sim04 Harbour Receiver 10.1 54.3 0
picture long --states

start_service
for i in $(seq 200); do
    device "rx-$((1000 + i))" "Receiver $i" "sim$((i % 17))" "Station $((i / 10))" Receiver \
        "$((i % 180)).125" "$((i % 90)).5" "$((i % 4))"
done
picture many --states

stop_service
picture waiting
