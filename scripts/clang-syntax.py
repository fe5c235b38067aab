#!/usr/bin/env python3
"""Compiles every source and test of a mingw build once more with Debian's clang, syntax only.

A second front end sees every change: what GCC accepts and clang (closer to MSVC in what it
rejects: two-phase lookup, narrowing, captures) does not fails here, without a second full build.
Reads the build's compile_commands.json and runs `clang++ --target=x86_64-w64-mingw32
-fsyntax-only` with the same definitions, include paths, language level and warning flags, and the
mingw-w64 posix-thread libstdc++ headers that clang does not find on its own.

usage: clang-syntax.py <build folder> [jobs]
"""
import glob
import json
import os
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

TRIPLE = "x86_64-w64-mingw32"


def clang_command(entry, runtime):
    args = entry.get("arguments") or shlex.split(entry["command"])
    kept = []
    skip_next = False
    for arg in args[1:]:
        if skip_next:
            skip_next = False
            continue
        if arg in ("-o", "-MF", "-MT", "-MQ"):
            skip_next = True
            continue
        if arg in ("-c", "-MD", "-MMD") or arg.startswith("-O") or arg == entry["file"]:
            continue
        kept.append(arg)
    return (["clang++", f"--target={TRIPLE}", "-fsyntax-only",
             "-isystem", f"{runtime}/include/c++", "-isystem", f"{runtime}/include/c++/{TRIPLE}"]
            + kept + [entry["file"]])


def main():
    build = os.path.abspath(sys.argv[1])
    jobs = int(sys.argv[2]) if len(sys.argv) > 2 else 2
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    runtimes = sorted(glob.glob(f"/usr/lib/gcc/{TRIPLE}/*-posix"))
    if not runtimes:
        print("clang-syntax: no mingw-w64 posix runtime found")
        return 1
    with open(os.path.join(build, "compile_commands.json")) as f:
        entries = json.load(f)
    ours = [e for e in entries
            if e["file"].endswith(".cpp")
            and os.path.abspath(e["file"]).startswith((os.path.join(root, "src") + os.sep,
                                                      os.path.join(root, "tests") + os.sep))]
    seen, unique = set(), []
    for e in ours:
        if e["file"] not in seen:
            seen.add(e["file"])
            unique.append(e)

    def run(entry):
        result = subprocess.run(clang_command(entry, runtimes[-1]), cwd=entry["directory"],
                                capture_output=True, text=True)
        return entry["file"], result.returncode, result.stderr

    failed = 0
    with ThreadPoolExecutor(max_workers=jobs) as pool:
        for name, code, errors in pool.map(run, unique):
            if code != 0:
                failed += 1
                print(f"clang-syntax: {os.path.relpath(name, root)}\n{errors}")
    print(f"clang-syntax: {len(unique)} files of src/ and tests/, {failed} rejected by clang")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
