#!/usr/bin/python3
"""Mutation check: does the test suite notice small faults put into the code on purpose?

Usage: /usr/bin/python3 scripts/mutate.py [--only PATTERN] [--ids N,N,...] [-j N] [--list FILE]
                                         [--scratch DIR] [--timeout SECONDS] [--check]

Copies the tree (without build/ and .git/) to a scratch folder (build/mutate by default),
configures one build there (the default preset's build type, benchmarks off, ccache when
present; laid out like build/default so that ccache serves the objects the default build made),
builds it and runs the suite once to make sure it passes unchanged. Then, for each mutation of the list, it replaces one
line of one file, builds incrementally, runs ctest (stopping at the first failing test, with a
time limit for the whole run), puts the file back and prints one line:

  caught          the build succeeded and a test failed or timed out
  SURVIVED        the build succeeded and every test passed: a fault the suite misses
  build-failed    the mutated code did not compile (the mutation needs rewording)
  not-applicable  the search text is not in the file, or not on exactly one line
  equivalent      marked in the list as changing nothing a host can see; not run

and at the end the share caught among the mutations that built. The scratch folder is kept and
reused by the next run (only the files that differ are copied again), which saves the full build.

The list (default scripts/mutations.txt) holds blocks separated by blank lines; '#' starts a
comment line. Each block has the keys:
  file:        path from the top of the tree
  find:        exact text found on exactly one line of that file (everything after "find: ")
  replace:     the text put in its place
  note:        what the mutation breaks
  equivalent:  (optional) why it changes nothing observable; such mutations are counted apart
This is a developer tool; it is not part of the continuous-integration run.
"""

import argparse
import fnmatch
import os
import shutil
import signal
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SKIP_DIRS = {".git", "build"}


class Mutation:
    def __init__(self, index, line):
        self.index = index
        self.line = line
        self.keys = {}

    def get(self, key, default=None):
        return self.keys.get(key, default)


def parse_list(path):
    mutations, current = [], None
    with open(path, encoding="utf-8") as handle:
        for number, raw in enumerate(handle, 1):
            text = raw.rstrip("\n")
            if text.startswith("#"):
                continue
            if not text.strip():
                current = None
                continue
            key, sep, value = text.partition(": ")
            if not sep:
                key, value = text.rstrip(":"), ""
            if key not in ("file", "find", "replace", "note", "equivalent"):
                sys.exit(f"{path}:{number}: unknown key '{key}'")
            if current is None:
                current = Mutation(len(mutations) + 1, number)
                mutations.append(current)
            current.keys[key] = value
    for m in mutations:
        for key in ("file", "find", "replace", "note"):
            if key not in m.keys:
                sys.exit(f"{path}:{m.line}: mutation without '{key}'")
    return mutations


def sync_tree(source, target):
    """Copies every file that is missing or different; leaves the others (and their times) alone."""
    for folder, dirs, files in os.walk(source):
        dirs[:] = [d for d in dirs if d not in SKIP_DIRS]
        rel = os.path.relpath(folder, source)
        os.makedirs(os.path.join(target, rel), exist_ok=True)
        for name in files:
            src, dst = os.path.join(folder, name), os.path.join(target, rel, name)
            with open(src, "rb") as handle:
                data = handle.read()
            if os.path.exists(dst):
                with open(dst, "rb") as handle:
                    if handle.read() == data:
                        continue
            with open(dst, "wb") as handle:
                handle.write(data)


def run(command, cwd, timeout=None, env=None):
    """Runs a command in its own process group; returns (exit code or None on timeout, output)."""
    process = subprocess.Popen(command, cwd=cwd, env=env, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, text=True, start_new_session=True)
    try:
        output, _ = process.communicate(timeout=timeout)
        return process.returncode, output
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        output, _ = process.communicate()
        return None, output


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--only", help="run only mutations whose file, text or note match this "
                        "glob pattern (e.g. '*Stokes*' or 'plugin/holders/*')")
    parser.add_argument("--ids", help="run only these mutations, by number in the list (e.g. 3,17,40)")
    parser.add_argument("-j", type=int, default=os.cpu_count() or 2, help="build and test jobs")
    parser.add_argument("--list", default=os.path.join(ROOT, "scripts", "mutations.txt"))
    parser.add_argument("--scratch", default=os.path.join(ROOT, "build", "mutate"),
                        help="scratch folder, kept between runs (default: build/mutate)")
    parser.add_argument("--timeout", type=int, default=600, help="seconds allowed for one ctest run")
    parser.add_argument("--check", action="store_true",
                        help="only check that every search text is found once; build nothing")
    args = parser.parse_args()

    mutations = parse_list(args.list)
    if args.only:
        pattern = args.only if any(c in args.only for c in "*?[") else f"*{args.only}*"
        mutations = [m for m in mutations
                     if any(fnmatch.fnmatch(m.get(k, ""), pattern) for k in ("file", "find", "note"))]

    if args.ids:
        wanted = {int(i) for i in args.ids.split(",") if i.strip()}
        mutations = [m for m in mutations if m.index in wanted]

    if args.check:
        bad = 0
        for m in mutations:
            try:
                with open(os.path.join(ROOT, m.get("file")), encoding="utf-8") as handle:
                    text = handle.read()
            except OSError:
                text = ""
            found = text.count(m.get("find"))
            if found != 1:
                bad += 1
                print(f"not-applicable [{m.index:3}] {m.get('file')}: search text found {found} times")
        print(f"{len(mutations)} mutations, {bad} not applicable")
        return 1 if bad else 0

    scratch = os.path.abspath(args.scratch)
    build = os.path.join(scratch, "build", "default")
    env = dict(os.environ)
    if shutil.which("ccache"):
        env.setdefault("CMAKE_CXX_COMPILER_LAUNCHER", "ccache")
        env.setdefault("CCACHE_BASEDIR", os.path.commonpath([ROOT, scratch]))
        env.setdefault("CCACHE_NOHASHDIR", "1")
    started = time.time()
    sync_tree(ROOT, scratch)
    configure = ["cmake", "-S", scratch, "-B", build, "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
                 "-DKORVANE_BUILD_BENCHMARKS=OFF"]
    build_cmd = ["cmake", "--build", build, f"-j{args.j}"]
    test_cmd = ["ctest", "--test-dir", build, "--stop-on-failure", f"-j{args.j}",
                "--timeout", str(args.timeout)]
    for command, what in ((configure, "configure"), (build_cmd, "build")):
        code, output = run(command, scratch, env=env)
        if code != 0:
            sys.exit(f"the unchanged tree does not {what}:\n{output[-4000:]}")
    code, output = run(test_cmd, scratch, timeout=args.timeout, env=env)
    if code != 0:
        sys.exit(f"the suite fails on the unchanged tree:\n{output[-4000:]}")
    print(f"unchanged tree builds and passes in {scratch} ({time.time() - started:.0f} s)",
          flush=True)

    counts = {"caught": 0, "SURVIVED": 0, "build-failed": 0, "not-applicable": 0,
              "equivalent": 0}
    survivors = []
    for m in mutations:
        label = f"[{m.index:3}] {m.get('file')}"
        if m.get("equivalent") is not None:
            counts["equivalent"] += 1
            print(f"{'equivalent':14} {label}: {m.get('note')} ({m.get('equivalent')})", flush=True)
            continue
        path = os.path.join(scratch, m.get("file"))
        try:
            with open(path, encoding="utf-8") as handle:
                original = handle.read()
        except OSError:
            original = ""
        lines = [n for n, text in enumerate(original.split("\n"), 1) if m.get("find") in text]
        if len(lines) != 1 or original.count(m.get("find")) != 1:
            counts["not-applicable"] += 1
            print(f"{'not-applicable':14} {label}: search text found on {len(lines)} lines", flush=True)
            continue
        label += f":{lines[0]}"
        t0 = time.time()
        try:
            with open(path, "w", encoding="utf-8") as handle:
                handle.write(original.replace(m.get("find"), m.get("replace")))
            code, output = run(build_cmd, scratch, env=env)
            if code != 0:
                status = "build-failed"
            else:
                code, output = run(test_cmd, scratch, timeout=args.timeout, env=env)
                status = "SURVIVED" if code == 0 else "caught"
        finally:
            with open(path, "w", encoding="utf-8") as handle:
                handle.write(original)
        counts[status] += 1
        if status == "SURVIVED":
            survivors.append(m)
        print(f"{status:14} {label}: {m.get('note')} ({time.time() - t0:.0f} s)", flush=True)

    ran = counts["caught"] + counts["SURVIVED"]
    share = 100.0 * counts["caught"] / ran if ran else 0.0
    print(f"\ncaught {counts['caught']} of {ran} mutations that built ({share:.1f} %); "
          f"{counts['equivalent']} marked equivalent, {counts['build-failed']} failed to build, "
          f"{counts['not-applicable']} not applicable; {time.time() - started:.0f} s")
    for m in survivors:
        print(f"  survived [{m.index}] {m.get('file')}: {m.get('note')}")
    return 1 if survivors or counts["build-failed"] or counts["not-applicable"] else 0


if __name__ == "__main__":
    sys.exit(main())
