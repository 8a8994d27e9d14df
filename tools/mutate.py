#!/usr/bin/env python3
"""tools/mutate.py [NUMBER] [SEED]: breaks the plug-in in NUMBER small ways, one at a time, and prints which of them the
tests do not notice. Exit status 0 when every mutant is killed."""
import concurrent.futures
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
JOBS = 2
SWAPS = [("==", "!="), ("&&", "||"), (" < ", " <= "), (" > ", " >= "), (" + ", " - "), ("true", "false"),
         ("GetParamValue", "GetParamText"), ("first", "second"), ("m_Line1", "m_Line2"), ("m_ShuffleMode", "m_RepeatMode"),
         ("m_ShuffleModes", "m_RepeatModes"), ("m_Elapsed", "m_Remaining"), ("m_CurrentSong", "m_TotalSongs"),
         ("m_HasPlay", "m_HasPause"), ("width", "height"), ("m_PlayStatus", "m_OnlineStatus"),
         ("begin", "end"), ("fs::status_error", "fs::directory_file"), ("one", "two")]


def mutants_of_line(line):
    """The line with one thing in it changed, once for each."""
    code = line.split("//")[0]
    if not code.strip() or code.lstrip().startswith("#"):
        return
    for pair in SWAPS:
        for old, new in (pair, pair[::-1]):
            pattern = re.escape(old) if not old[0].isalpha() else rf"\b{re.escape(old)}\b"
            for found in re.finditer(pattern, code):
                yield line[:found.start()] + new + line[found.end():]
    for found in re.finditer(r"(?<![\w.\"])\d+(?=[^\w\".]|U)", code):
        yield line[:found.start()] + str(int(found.group()) + 1) + line[found.end():]
    for found in re.finditer(r'"[^"\\]*"', code):
        yield line[:found.end() - 1] + "x" + line[found.end() - 1:]
    for found in re.finditer(r"!(?=[a-zA-Z_(])", code):
        yield line[:found.start()] + line[found.end():]
    statement = code.strip()
    if statement.endswith(";") and not re.match(r"(return|using|const|static|constexpr|auto|std::|long|void|bool|\w+&? \w+( =|;|\())", statement):
        yield "\n"


def mutants(path):
    """(line number, text of the file) for each mutant of a source."""
    lines = path.read_text().splitlines(keepends=True)
    for i, line in enumerate(lines):
        for changed in mutants_of_line(line):
            if changed != line:
                yield i + 1, lines[:i] + [changed] + lines[i + 1:]
        if i + 1 < len(lines) and line != lines[i + 1]:
            one, two = line.rstrip("\n"), lines[i + 1].rstrip("\n")
            indent = len(one) - len(one.lstrip()) == len(two) - len(two.lstrip()) > 0
            if indent and one[-1:] == two[-1:] and one[-1:] in (";", ","):
                yield i + 1, lines[:i] + [lines[i + 1], line] + lines[i + 2:]


class Worker:
    """A copy of the tree, with all built once."""

    def __init__(self, folder):
        self.source, self.build = folder / "source", folder / "build"
        shutil.copytree(ROOT, self.source, symlinks=True, ignore=shutil.ignore_patterns("build", ".git"))
        subprocess.run(["cmake", "-S", self.source, "-B", self.build, "-G", "Ninja", "-DCMAKE_CXX_FLAGS=-O1 -DNDEBUG -w"],
                       check=True, stdout=subprocess.DEVNULL)
        subprocess.run(["cmake", "--build", self.build, f"-j{JOBS}", "--target", "mediaproxy_tests", "mediaproxy_faults"],
                       check=True, stdout=subprocess.DEVNULL)
        self.filter = "*"

    def failing(self):
        """The tests that fail; None when all pass."""
        environment = dict(os.environ, TEST_TMPDIR="/dev/shm/" if os.path.isdir("/dev/shm") else "/tmp/")
        for program in ("mediaproxy_tests", "mediaproxy_faults"):
            command = [self.build / "bin" / program, "--gtest_brief=1", "--gtest_filter=" + self.filter]
            try:
                run = subprocess.run(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120,
                                     check=False)
            except subprocess.TimeoutExpired:
                return [b"timeout"]
            if run.returncode != 0:
                return re.findall(rb"\[  FAILED  \] (\w+\.\w+) \(", run.stdout) or [b"crash"]
        return None

    def try_one(self, mutant):
        name, line, text = mutant
        path = self.source / "driver" / name
        whole = path.read_text()
        path.write_text("".join(text))
        try:
            built = subprocess.run(["cmake", "--build", self.build, "-j1", "--target", "mediaproxy_tests"], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, check=False)
            outcome = "unbuildable" if built.returncode else "killed" if self.failing() else "SURVIVED"
        finally:
            path.write_text(whole)
        old = whole.splitlines()
        shown = next((t.strip() for t, o in zip(text, whole.splitlines(keepends=True)) if t != o), "")
        print(f"{outcome}: driver/{name}:{line}: {old[line - 1].strip()}  ->  {shown}", flush=True)
        return outcome


def main():
    number = int(sys.argv[1]) if len(sys.argv) > 1 else 120
    seed = int(sys.argv[2]) if len(sys.argv) > 2 else 1
    print("seed", seed)
    chosen = [(path.name, line, text) for path in sorted((ROOT / "driver").glob("*.[ch]*")) for line, text in mutants(path)]
    print(len(chosen), "mutants in all")
    random.Random(seed).shuffle(chosen)
    with tempfile.TemporaryDirectory() as folder:
        workers = [Worker(pathlib.Path(folder) / str(i)) for i in range(JOBS)]
        failing = workers[0].failing()
        if failing:
            print("these fail anyway and are left out:", failing)
            for worker in workers:
                worker.filter = "*-" + ":".join(name.decode() for name in failing)
        with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
            shares = [pool.submit(lambda w, s: [w.try_one(m) for m in s], worker, chosen[i:number:JOBS])
                      for i, worker in enumerate(workers)]
            outcomes = [outcome for share in shares for outcome in share.result()]
    for outcome in ("killed", "SURVIVED", "unbuildable"):
        print(outcome, outcomes.count(outcome))
    return 1 if "SURVIVED" in outcomes else 0


if __name__ == "__main__":
    sys.exit(main())
