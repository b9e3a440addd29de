#!/usr/bin/env python3
"""clang-tidy over all C++ sources: lint.py COMPILE_DATABASE WORK_FOLDER JOBS FOLDER…

Most of a run goes into the headers of the libraries, once for each source. Sources that are compiled
alike are therefore read together, as one; where their local names clash, in two halves, and so on.
"""
import concurrent.futures
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys

root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
# The one source that includes the others would be the only one to be found.
CHECKS = "-bugprone-suspicious-include"
# Tests and benchmarks throw the same dice each time, on purpose.
REPEATABLE = "-cert-msc51-cpp"
OURS = f"^{re.escape(root)}/(src|tests|bench)/"


def arguments_of(command):
    """What the compiler is told, without the source, its result and headers that only gcc can read."""
    given = iter(shlex.split(command)[1:])
    kept = []
    for argument in given:
        if argument in ("-o", "-c", "-include"):
            next(given)
        elif argument not in ("-Werror", "-Winvalid-pch"):
            kept.append(argument)
    return tuple(kept)


def groups_of(database, folders):
    """Sources by folder and arguments; each source once, as the first target has it."""
    groups, seen = {}, set()
    for entry in database:
        source = entry["file"]
        if source in seen or not source.startswith(folders):
            continue
        seen.add(source)
        key = (entry["directory"], arguments_of(entry["command"]))
        groups.setdefault(key, []).append(source)
    return groups


def run(command, folder):
    return subprocess.run(command, cwd=folder, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def lint(folder, arguments, sources, work):
    """What clang-tidy says about these sources, and whether it is content."""
    if len(sources) == 1:
        together = sources[0]
    else:
        text = "".join(f'#include "{source}"\n' for source in sources)
        together = os.path.join(work, hashlib.sha1(text.encode()).hexdigest()[:12] + ".cpp")
        with open(together, "w", encoding="utf-8") as file:
            file.write(text)
        if run(["clang++", "-fsyntax-only", "-w", *arguments, together], folder).returncode:
            middle = len(sources) // 2
            halves = [lint(folder, arguments, half, work) for half in (sources[:middle], sources[middle:])]
            return halves[0][0] + halves[1][0], halves[0][1] and halves[1][1]
    product = sources[0].startswith(f"{root}/src/")
    checks = CHECKS if product else f"{CHECKS},{REPEATABLE}"
    done = run(["clang-tidy", "--quiet", f"--config-file={root}/.clang-tidy", f"--checks={checks}",
                f"--header-filter={OURS}", together, "--", *arguments, "-Wno-unknown-warning-option"], folder)
    return done.stdout, done.returncode == 0


def main():
    database_file, work, jobs = sys.argv[1:4]
    folders = tuple(os.path.join(root, folder.rstrip("/")) + "/" for folder in sys.argv[4:])
    os.makedirs(work, exist_ok=True)
    with open(database_file, encoding="utf-8") as file:
        groups = groups_of(json.load(file), folders)
    if not groups:
        sys.exit("lint: there are no such sources")
    said, content = set(), True
    with concurrent.futures.ThreadPoolExecutor(int(jobs)) as pool:
        runs = [pool.submit(lint, folder, arguments, sorted(sources), work)
                for (folder, arguments), sources in sorted(groups.items(), key=lambda g: -len(g[1]))]
        for done in concurrent.futures.as_completed(runs):
            text, fine = done.result()
            content = content and fine
            # A header is read with many sources, and says the same each time.
            for finding in re.split(r"(?m)^(?=/)", text):
                if finding.strip() and finding not in said:
                    said.add(finding)
                    print(finding.replace(root + "/", ""), end="", flush=True)
    print(f"{sum(len(sources) for sources in groups.values())} sources")
    sys.exit(0 if content else 1)


main()
