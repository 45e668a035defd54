#!/bin/sh
# Benchmarks of skelvor: one field at the end of a 20 GB sparse file, peak
# memory against the file's size, printing throughput of a wide record, one
# element of a table of up to 1.25 billion records, a long array printed
# whole against od, then the benchmark programs (arrays, the expression
# language).
# Usage: bench/run.sh [build-folder]
set -e
build=${1:-build-bench}
tool=$(cd "$build" && pwd)/skelvor
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

peak_kb() { /usr/bin/time -f "%M" "$@" 2>&1 >/dev/null | tail -n 1; }
seconds() { /usr/bin/time -f "%e" "$@" 2>&1 >/dev/null | tail -n 1; }

echo "== one field at the end of a sparse file"
for size in 1M 20G; do
    rm -f "$work/data.bin"
    truncate -s "$size" "$work/data.bin"
    bytes=$(stat -c %s "$work/data.bin")
    printf 'tail|sparse file||BIG-ENDIAN\nlast|Double||||%s\n' $((bytes - 8)) > "$work/tail.dd"
    start=$(date +%s%N)
    "$tool" "$work/data.bin" -d="$work/tail" last > /dev/null
    end=$(date +%s%N)
    echo "file $size: $(( (end - start) / 1000 )) us, peak memory $(peak_kb "$tool" "$work/data.bin" -d="$work/tail" last) kB"
    if command -v strace > /dev/null; then
        # bytes that read() returned on the descriptor of the data file
        read_bytes=$(strace -e trace=openat,read -e signal=none "$tool" "$work/data.bin" -d="$work/tail" last 2>&1 >/dev/null \
            | awk -v name="\"$work/data.bin\"" '
                /^openat\(/ && index($0, name) { fd = $NF }
                /^read\(/ { split($1, a, "("); sub(",", "", a[2]); if (a[2] == fd) total += $NF }
                END { print total + 0 }')
        echo "file $size: bytes read from the data file: $read_bytes"
    fi
done

echo "== printing a record of 10000 numeric fields"
python3 - "$work" <<'PY'
import random, struct, sys
work = sys.argv[1]
random.seed(7)
kinds = [("SLong", "i", 4), ("Double", "d", 8), ("UShort", "H", 2), ("Float", "f", 4)]
lines = ["wide|10000 numeric fields||LITTLE-ENDIAN"]
data = b""
for i in range(10000):
    word, fmt, size = kinds[i % 4]
    lines.append("f%d|%s||%s|" % (i, word, size if word == "SLong" else ""))
    value = random.uniform(-1e6, 1e6) if fmt in "df" else random.randint(0, 60000)
    data += struct.pack("<" + fmt, value)
open(work + "/wide.dd", "w").write("\n".join(lines) + "\n")
open(work + "/wide.bin", "wb").write(data)
PY
# best of 7 runs, in microseconds
best_us() {
    best=""
    for run in 1 2 3 4 5 6 7; do
        start=$(date +%s%N)
        "$@" > /dev/null
        end=$(date +%s%N)
        t=$(( (end - start) / 1000 ))
        if [ -z "$best" ] || [ "$t" -lt "$best" ]; then best=$t; fi
    done
    echo "$best"
}
one=$(best_us "$tool" "$work/wide.bin" -d="$work/wide" f0)
echo "start-up, dictionary of 10000 lines and one field: $one us"
for opts in "" "-x"; do
    all=$(best_us "$tool" "$work/wide.bin" -d="$work/wide" $opts)
    echo "10000 lines ${opts:-plain}: whole run $all us, $(( 10000 * 1000000 / all )) lines/s;" \
         "printing alone $(( all - one )) us, $(( 10000 * 1000000 / (all - one) )) lines/s"
done
"$tool" "$work/wide.bin" -d="$work/wide" > "$work/out.txt"
echo "peak memory: $(peak_kb "$tool" "$work/wide.bin" -d="$work/wide") kB"

echo "== one element of a table of N 16-byte records"
cat > "$work/rec.dd" <<'DD'
rec|one 16-byte record||
id|ULong||4|
value|Double|||
flags|UShort|||
pad|UShort|||
DD
printf 'demo|header and count records||LITTLE-ENDIAN\nmagic|String||4\ncount|ULong||4|\nrecs|@rec|||count\n' > "$work/demo.dd"
for n in 1000000 10000000 1249999999; do
    # sparse: the header and the last record hold bytes
    python3 - "$work/demo.bin" "$n" <<'PY'
import struct, sys
path, n = sys.argv[1], int(sys.argv[2])
with open(path, "wb") as f:
    f.write(b"DEMO" + struct.pack("<I", n))
    f.seek(8 + 16 * (n - 1))
    f.write(struct.pack("<IdHH", n - 1, ((n - 1) % 10007) * 0.25, (n - 1) & 0xFFFF, 0))
PY
    t=$(best_us "$tool" "$work/demo.bin" -d="$work/demo" "recs.$((n - 1)).value")
    echo "N=$n: recs.$((n - 1)).value in $t us, peak memory $(peak_kb "$tool" "$work/demo.bin" -d="$work/demo" "recs.$((n - 1)).value") kB"
done
rm -f "$work/demo.bin"

echo "== 10,000,000 floats printed whole as one folded line, against od -An -v -tf4"
python3 - "$work/floats.bin" <<'PY'
import array, sys
array.array("f", (((i * 7919) % 20011) * 0.125 for i in range(10000000))).tofile(open(sys.argv[1], "wb"))
PY
printf 'floats|float32 values filling the file||LITTLE-ENDIAN\nx|Float|||#filesize / 4\n' > "$work/floats.dd"
line=$(best_us "$tool" "$work/floats.bin" -d="$work/floats" -base)
od_us=$(best_us od -An -v -tf4 "$work/floats.bin")
echo "skelvor -base: $line us, od: $od_us us, od / skelvor = $(( od_us * 10 / line / 10 )).$(( od_us * 10 / line % 10 )), peak memory $(peak_kb "$tool" "$work/floats.bin" -d="$work/floats" -base) kB"
rm -f "$work/floats.bin"

for program in "$build"/bench/*; do
    [ -f "$program" ] && [ -x "$program" ] || continue
    echo "== $(basename "$program")"
    "$program" --benchmark_min_time=0.2
done
