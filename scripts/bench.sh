#!/usr/bin/env bash
# Runs every benchmark of a Release build and prints all their figures as one
# table and as one JSON document.
#   scripts/bench.sh [BUILD_DIR]          (default: build-release)
#   BENCH_FILTER=regex scripts/bench.sh   (run only the benchmarks whose name matches)
#   BENCH_JSON=path scripts/bench.sh      (also write the JSON document to path)
#
# Each benchmark prints a table for people and one line that starts with '{',
# written by measure::Report (bench/measure.h):
#   {"bench":"x","metrics":[{"name":"p50","value":12.5,"unit":"us",
#                            "floor":3.1,"limit":1000,"note":"..."}, ...]}
# Every figure names its unit; floor, limit and note are optional.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD_DIR="${1:-$ROOT/build-release}"
if [ ! -d "$BUILD_DIR/bench" ]; then
    "$ROOT/scripts/setup-deps.sh"
    BUILD_TYPE=Release "$ROOT/scripts/build.sh" "$BUILD_DIR"
fi
export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"

out="$(mktemp -d)"
trap 'rm -rf "$out"' EXIT
failed=0
shopt -s nullglob
for b in "$BUILD_DIR"/bench/*/bench_*; do
    [ -f "$b" ] && [ -x "$b" ] || continue
    name="$(basename "$b")"
    if [ -n "${BENCH_FILTER:-}" ] && ! [[ "$name" =~ $BENCH_FILTER ]]; then
        continue
    fi
    echo "== $name" >&2
    start=$(date +%s%N)
    # Every benchmark stops by itself; the limit only guards against a hang.
    if timeout --kill-after=10 600 "$b" >"$out/$name.out" 2>"$out/$name.err"; then
        rc=0
    else
        rc=$?
        failed=1
        echo "!! $name exited with status $rc" >&2
        tail -n 20 "$out/$name.err" >&2 || true
    fi
    end=$(date +%s%N)
    printf '%s\t%s\t%s\n' "$name" "$rc" "$(((end - start) / 1000000))" >>"$out/index.tsv"
    grep -v '^{' "$out/$name.out" >&2 || true
done

if [ ! -s "$out/index.tsv" ]; then
    echo "no benchmark found under $BUILD_DIR/bench" >&2
    exit 1
fi

python3 - "$out" "${BENCH_JSON:-}" <<'PY'
import json, os, sys, platform, datetime

out, json_path = sys.argv[1], sys.argv[2]
rows, benches = [], []

def add(bench, name, value, unit="", floor=None, limit=None, note=""):
    rows.append({"bench": bench, "name": name, "value": value, "unit": unit,
                 "floor": floor, "limit": limit, "note": note})

for line in open(os.path.join(out, "index.tsv")):
    exe, rc, secs = line.rstrip("\n").split("\t")
    entry = {"executable": exe, "exit_status": int(rc), "seconds": int(secs) / 1000.0, "results": []}
    benches.append(entry)
    for text in open(os.path.join(out, exe + ".out"), errors="replace"):
        if not text.startswith("{"):
            continue
        try:
            obj = json.loads(text)
        except ValueError as e:
            add(exe, "(unparsable JSON line)", None, note=str(e))
            continue
        entry["results"].append(obj)
        bench = str(obj.get("bench", exe))
        if not isinstance(obj.get("metrics"), list):
            add(exe, "(JSON line without metrics)", None, note=text.strip()[:80])
            continue
        for m in obj["metrics"]:
            add(bench, str(m.get("name", "?")), m.get("value"), m.get("unit", ""),
                m.get("floor"), m.get("limit"), str(m.get("note", "")))

def fmt(v):
    if v is None:
        return ""
    if isinstance(v, bool):
        return "true" if v else "false"
    if isinstance(v, float):
        if abs(v) >= 1e5:
            return "%.0f" % v
        if v != 0 and abs(v) < 1e-3:
            return "%.3g" % v
        return "%.3f" % v if abs(v) < 100 else "%.1f" % v
    return str(v)

def ratio(r):
    v, f = r["value"], r["floor"]
    if isinstance(v, (int, float)) and isinstance(f, (int, float)) and f:
        return "%.2fx" % (v / f)
    return ""

head = ("benchmark", "figure", "value", "unit", "floor", "limit", "value/floor")
table = [head] + [(r["bench"], r["name"], fmt(r["value"]), r["unit"], fmt(r["floor"]),
                   fmt(r["limit"]), ratio(r)) for r in rows]
widths = [max(len(str(row[i])) for row in table) for i in range(len(head))]
print()
for n, row in enumerate(table):
    print("  ".join(str(c).ljust(w) if i < 2 or i == 3 else str(c).rjust(w)
                    for i, (c, w) in enumerate(zip(row, widths))).rstrip())
    if n == 0:
        print("  ".join("-" * w for w in widths))
bad = [b["executable"] for b in benches if b["exit_status"] != 0]
if bad:
    print("\nfailed: " + ", ".join(bad))

doc = {"host": platform.node(), "cpus": os.cpu_count(),
       "load_average": os.getloadavg(),
       "when": datetime.datetime.utcnow().strftime("%Y-%m-%dT%H:%M:%SZ"),
       "figures": rows, "benchmarks": benches}
text = json.dumps(doc, indent=1)
print()
print(text)
if json_path:
    with open(json_path, "w") as f:
        f.write(text + "\n")
PY
exit $failed
