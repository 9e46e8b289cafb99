#!/usr/bin/env bash
# Runs one check of the demo's programs: check-demo.sh CHECK PROGRAMS FOLDER
# CHECK is the name of a function below, PROGRAMS the folder of the programs, FOLDER room of its
# own for the check; "recording" is the experiment that the other checks start from. Programs for
# another host run through $EMULATOR, a list with ';' between its words.
set -euo pipefail

programs=$2
folder=$3
recording=$folder/../recording/demo.dat
IFS=';' read -ra emulator <<<"${EMULATOR:-}"

program() {
    "${emulator[@]}" "$programs/$1" "${@:2}"
}

# What a command ended with and printed, without the shell ending over it.
run() {
    status=0
    output=$("$@" 2>&1) || status=$?
}

expect() {
    if [[ $status != "$1" || $output != *"$2"* ]]; then
        echo "ended with $status, expected $1 and '$2':"
        echo "$output"
        exit 1
    fi
}

# Puts one byte, in octal, at an offset of a file.
put_byte() {
    printf '%b' "\\0$3" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none
}

# A 32-bit number at an offset of a data file, which is big-endian.
number_at() {
    od -An -tu4 --endian=big -j "$2" -N 4 "$1"
}

copy_recording() {
    cp "$recording" "$folder/copy.dat"
    cp "$recording.played" "$folder/copy.dat.played"
}

recording() {
    program record-demo "$folder/demo.dat"
    run program show-demo "$folder/demo.dat"
    expect 0 'sine 30 pA + ramp 200 pA, 800 ms'
}

# The file holds nothing of the day or the machine's memory: recorded again, it is the same.
repeats() {
    program record-demo "$folder/demo.dat"
    cmp "$recording" "$folder/demo.dat"
}

never_overwrites() {
    copy_recording
    run program record-demo "$folder/copy.dat"
    expect 2 'ITCCreateFile'
    cmp "$recording" "$folder/copy.dat"
    cmp "$recording.played" "$folder/copy.dat.played"
}

# One bit of the last sample played, and one bit of epoch 10's noise seed, in the data file.
notices_differences() {
    copy_recording
    local size
    size=$(stat -c %s "$folder/copy.dat.played")
    put_byte "$folder/copy.dat.played" $((size - 2)) 177
    run program show-demo "$folder/copy.dat"
    expect 1 'epoch 13: 1 of 30000 recomputed samples differ from those played, the first at 29999'
    copy_recording
    local table epoch_10
    table=$(number_at "$recording" 540)
    epoch_10=$(number_at "$recording" $((table + 4 * 10)))
    put_byte "$folder/copy.dat" $((epoch_10 + 912 + 2 * 4 + 3)) 241
    run program show-demo "$folder/copy.dat"
    expect 1 'epoch 10: '
}

analysis() {
    run program analyse-recording "$recording"
    expect 0 'format version 8, 14 epochs'
    expect 0 'ramp              200 pA       0 pA   10000'
    copy_recording
    put_byte "$folder/copy.dat" 0 004
    run program analyse-recording "$folder/copy.dat"
    expect 0 "filtered noise was drawn from the platform's rand"
    head -c 100000 "$recording" >"$folder/copy.dat"
    run program analyse-recording "$folder/copy.dat"
    expect 2 'cannot be'
}

# A damaged length and a lost end take an epoch or those behind, and no more.
reading() {
    run program read-recording "$recording"
    expect 0 '   10      100 us   12000  noise'
    copy_recording
    put_byte "$folder/copy.dat" $((580 + 576)) 177
    run program read-recording "$folder/copy.dat"
    expect 1 'epoch 0 at byte 580: found '
    expect 1 '   13 '
    head -c 100000 "$recording" >"$folder/copy.dat"
    run program read-recording "$folder/copy.dat"
    expect 1 'epoch 13: the file ends before it'
}

first_epoch() {
    run program first-epoch "$folder/first.dat"
    expect 0 'recomputed bit for bit'
}

two_outputs() {
    run program two-outputs "$folder/two.dat"
    expect 0 'entry 1: output 2, stimulus of type 4, in V, echoed'
}

rm -rf "$folder"
mkdir -p "$folder"
"$1"
