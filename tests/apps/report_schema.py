#!/usr/bin/python3
"""usage: report_schema.py PROGRAM SOURCE: holds reports of `mendex repair --json` against their schema.

Sound, broken, damaged and missing inputs, every exit code, and a batch of which one file takes too long. Ends with 77 where the
validator is not installed.
"""

import json
import os
import random
import subprocess
import sys
import tempfile

try:
    import jsonschema
except ImportError:
    print("the Python package jsonschema is not installed")
    sys.exit(77)

program, source = sys.argv[1:3]
with open(os.path.join(source, "docs/report.schema.json"), encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
samples = sorted(os.path.join(source, "samples", name) for name in os.listdir(os.path.join(source, "samples")) if name.endswith((".stl", ".ast")))
seen = {}  # how often each exit code
failures = 0


def fail(what, arguments):
    global failures
    failures += 1
    print("FAILED:", what, "of", " ".join(arguments))


def run(*arguments, reports=1):
    """Every line of standard output is a report that holds good, and the last one, or the worst, tells the exit code."""
    result = subprocess.run([program, "repair", *arguments], capture_output=True, timeout=120, check=False)
    lines = result.stdout.decode("utf-8").splitlines()
    if len(lines) != reports:
        fail(f"{len(lines)} lines, not {reports}", arguments)
        return
    for line in lines:
        report = json.loads(line)
        for error in validator.iter_errors(report):
            fail(f"{error.json_path}: {error.message[:200]}", arguments)
    if report["exit"] != result.returncode:
        fail(f"exit {result.returncode}, told {report['exit']}", arguments)
    seen[result.returncode] = seen.get(result.returncode, 0) + 1


def mutated(contents, chance):
    """Bytes changed, cut out, doubled."""
    result = bytearray(contents)
    for _ in range(chance.randrange(1, 6)):
        at = chance.randrange(len(result))
        count = chance.randrange(1, 60)
        how = chance.randrange(4)
        if how == 0:
            result[at] = chance.randrange(256)
        elif how == 1:
            del result[at:at + count]
        elif how == 2:
            result[at:at] = result[at:at + count]
        else:
            del result[max(at, 1):]
    return bytes(result) or b"x"


with tempfile.TemporaryDirectory() as folder:
    def path(name):
        return os.path.join(folder, name)

    chance = random.Random(1)
    for sample in samples:
        run(sample, "-n", "--json")
        run(sample, "-o", path("out.stl"), "--force", "--json", "--units", "mm")
        with open(sample, "rb") as file:
            contents = file.read()
        for k in range(8):
            name = path(f"mutated{k}{os.path.splitext(sample)[1]}")
            with open(name, "wb") as file:
                file.write(mutated(contents, chance))
            run(name, "-n", "--json", *(["--close-sheets", "--tol", "0.1e", "--drop-specks", "1%"] if k % 2 else []))
    broken = os.path.join(source, "samples/broken_ring.stl")
    run(broken, "-n", "--json", "--only", "weld")
    run(broken, "-o", path("out.stl"), "--json")
    run(path("missing.stl"), "-n", "--json")
    run(broken, "-o", path("no/out.stl"), "--json")
    run(broken, "-n", "--json", "--max-new-area", "0")
    run(broken, "-n", "--json", "--timeout", "1e-6")
    with open(path("big.stl"), "wb") as file:
        file.write(bytes(80) + (400000).to_bytes(4, "little") + b"".join(random.Random(k).randbytes(50 * 1000) for k in range(400)))
    run(path("big.stl"), "-n", "--json", "--max-memory", "40M")
    run(broken, path("big.stl"), path("missing.stl"), "--out-dir", path("batch"), "--json", "--timeout", "1e-3", reports=4)

if set(seen) != set(range(8)):
    fail(f"only exit codes {sorted(seen)}", ["all runs"])
print("exit codes:", dict(sorted(seen.items())))
sys.exit(1 if failures else 0)
