#!/usr/bin/env python3
"""Applies small faults to the library, one at a time, and shows that its tests find each of them.

A fault changes one token or drops one statement in a scratch copy of the sources. The copy is built
as BUILD was, and BUILD's own test programs run against it. A fault that no test finds is a survivor;
those that change nothing that anybody can see are listed, with the reason, in the file of known
survivors. Exit status: 0 when every survivor is a known one, 1 otherwise.
"""

import argparse
import collections
import json
import os
import pathlib
import random
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile

FOLDERS = ["transport", "flash", "system", "switch", "pon", "ont", "snmp"]
KNOWN = "tests/library/known_survivors.txt"
TESTS = [
    "tests/library/library_operation_test",
    "tests/library/library_pon_test",
    "tests/library/library_snmp_test",
    "tests/library/library_switch_test",
    "tests/library/library_system_test",
    "tests/flash/flash_calls_test",
    "tests/flash/flash_device_test",
]
SECONDS_FOR_TESTS = 60

NUMBER = re.compile(r"(?<![\w.])(0x[0-9a-fA-F]+|\d+)(?=[uU]?(?![\w.']))")
TOKENS = [
    (re.compile(r"(?<=\s)==(?=\s)"), "!="),
    (re.compile(r"(?<=\s)!=(?=\s)"), "=="),
    (re.compile(r"(?<=\s)<(?=\s)"), "<="),
    (re.compile(r"(?<=\s)>(?=\s)"), ">="),
    (re.compile(r"(?<=\s)>=(?=\s)"), ">"),
    (re.compile(r"(?<=\s)\|\|(?=\s)"), "&&"),
    (re.compile(r"(?<=\s)&&(?=\s)"), "||"),
    (re.compile(r"(?<=\s)\|(?=\s)"), "&"),
    (re.compile(r"(?<=\s)\+(?=\s)"), "-"),
    (re.compile(r"(?<=\s)-(?=\s)"), "+"),
    (re.compile(r"(?<=\s)\*(?=\s)"), "+"),
]
# A call for one that keeps the arguments and does something else.
CALLS = [
    ("fetch_keep", "fetch"),
    ("fetch", "fetch_keep"),
]
STATEMENT = re.compile(r"^\s+(?=\S)(?!return\b|using\b|static_assert\b)[\w:>*&.\[\]()\- ]+"
                       r"(\(.*\)|\s=\s.*);$")
DECLARATION = re.compile(r"^\s+(const |constexpr |auto |static |u?int\d+_t |uint8_t |Reply |[A-Z]\w+ )")
SIGNATURE = re.compile(r"^\w.*[({,]$|^ {8,}.*\w(\[\d+\])?\) \{$")
SKIPPED = re.compile(r"^\s*(//|#|static_assert|using )|offsetof|sizeof\(\w+\) ==")

Fault = collections.namedtuple("Fault", "file line before after")


def faults_of_line(text):
    """Each way to spoil the line."""
    if SKIPPED.search(text) or SIGNATURE.search(text):
        return
    code = text.split(" //")[0].rstrip()
    for match in NUMBER.finditer(code):
        value = int(match.group(0), 0) + 1
        number = hex(value) if match.group(0).startswith("0x") else str(value)
        yield code[: match.start()] + number + code[match.end() :]
    for pattern, replacement in TOKENS:
        for match in pattern.finditer(code):
            yield code[: match.start()] + replacement + code[match.end() :]
    for name, other in CALLS:
        for match in re.finditer(rf"\b{name}\(", code):
            yield code[: match.start()] + other + "(" + code[match.end() :]
    for match in re.finditer(r'"([a-z]+[a-z ]*)"', code):
        yield code[: match.end() - 1] + "x" + code[match.end() - 1 :]
    if STATEMENT.match(code) and not DECLARATION.match(code):
        yield re.match(r"^\s*", code).group(0) + ";"


def all_faults(root):
    found = []
    for folder in FOLDERS:
        for path in sorted((root / folder).glob("*.*")):
            if path.suffix not in (".cc", ".h"):
                continue
            inside_assertion = False
            for number, text in enumerate(path.read_text().splitlines()):
                inside_assertion = inside_assertion or text.startswith("static_assert")
                if not inside_assertion:
                    for after in faults_of_line(text):
                        found.append(Fault(f"{folder}/{path.name}", number, text.strip(), after))
                if text.endswith(";"):
                    inside_assertion = False
    return found


def read_known(path):
    """The lines FILE ## BEFORE ## AFTER, each under the reason that begins with '#'."""
    known = set()
    for line in path.read_text().splitlines():
        if line and not line.startswith("#"):
            parts = [part.strip() for part in line.split(" ## ")]
            if len(parts) != 3:
                sys.exit(f"mutate.py: {path}: not FILE ## BEFORE ## AFTER: {line}")
            known.add(tuple(parts))
    return known


class Bench:
    """A scratch copy of the library's sources, its objects and the mutated library."""

    def __init__(self, root, build, scratch):
        self.root, self.build, self.scratch = root, build, scratch
        for folder in FOLDERS + ["include"]:
            shutil.copytree(root / folder, scratch / folder)
        self.commands = {}
        for entry in json.loads((build / "compile_commands.json").read_text()):
            source = pathlib.Path(entry["file"]).relative_to(root)
            if source.parts[0] in FOLDERS and "oltmgmt_objects" in entry["command"]:
                self.commands[str(source)] = self.command(entry["command"], source)
        self.users = {}
        for source in self.commands:
            self.compile(source)
            listed = subprocess.run(
                [*self.commands[source][:-4], "-MM", str(scratch / source)],
                check=True, capture_output=True, text=True).stdout
            for header in re.findall(r"\S+\.h", listed):
                header = os.path.relpath(header, scratch)
                self.users.setdefault(header, []).append(source)

    def object_of(self, source):
        return self.scratch / (source.replace("/", "_") + ".o")

    def command(self, text, source):
        words = shlex.split(text)
        if words[0].endswith("ccache"):
            del words[0]
        kept = []
        skip = False
        for word in words:
            if skip:
                skip = False
            elif word in ("-o", "-c"):
                skip = True
            else:
                kept.append(word.replace(str(self.root), str(self.scratch)))
        return kept + ["-w", "-Wno-error", "-c", str(self.scratch / source), "-o",
                       str(self.object_of(str(source)))]

    def compile(self, source):
        return subprocess.run(self.commands[source], capture_output=True).returncode == 0

    def link(self):
        library = self.scratch / "liboltmgmt.so.0"
        objects = [str(self.object_of(source)) for source in self.commands]
        subprocess.run(
            ["cc", "-shared", "-nostartfiles", "-Wl,-soname,liboltmgmt.so.0",
             f"-Wl,--version-script={self.root}/abi/exports.map", *objects, "-o", str(library)],
            check=True, capture_output=True)
        return library

    def tests_pass(self):
        environment = dict(os.environ, LD_PRELOAD=str(self.link()))
        for test in TESTS:
            process = subprocess.Popen(
                [str(self.build / test), "--gtest_fail_fast", "--gtest_brief=1"], env=environment,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
            try:
                if process.wait(SECONDS_FOR_TESTS) != 0:
                    return False
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
                return False
        return True

    def verdict(self, fault):
        """"found", "survived", or "does not compile"."""
        path = self.scratch / fault.file
        original = path.read_text()
        lines = original.splitlines()
        lines[fault.line] = fault.after
        path.write_text("\n".join(lines) + "\n")
        sources = [fault.file] if fault.file in self.commands else self.users.get(fault.file, [])
        try:
            if not all(self.compile(source) for source in sources):
                return "does not compile"
            return "survived" if self.tests_pass() else "found"
        finally:
            path.write_text(original)
            for source in sources:
                self.compile(source)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path, help="a host build with its tests")
    parser.add_argument("--count", type=int, default=300, help="how many faults (default %(default)s)")
    parser.add_argument("--all", action="store_true", help="all faults")
    parser.add_argument("--seed", type=int, default=1, help="which ones (default %(default)s)")
    parser.add_argument("--only", default="", help="only in files whose name contains this")
    arguments = parser.parse_args()

    root = pathlib.Path(__file__).resolve().parent.parent
    known = read_known(root / KNOWN)
    faults = [fault for fault in all_faults(root) if arguments.only in fault.file]
    total = len(faults)
    if not arguments.all:
        random.Random(arguments.seed).shuffle(faults)
    counts = collections.Counter()
    unknown = []
    with tempfile.TemporaryDirectory() as scratch:
        bench = Bench(root, arguments.build.resolve(), pathlib.Path(scratch))
        if not bench.tests_pass():
            sys.exit("mutate.py: the tests fail without any fault")
        for fault in faults:
            if not arguments.all and counts["found"] + counts["survived"] == arguments.count:
                break
            verdict = bench.verdict(fault)
            counts[verdict] += 1
            if verdict != "survived":
                continue
            after = fault.after.strip()
            if (fault.file, fault.before, after) in known:
                counts["known"] += 1
            else:
                unknown.append(fault)
                print(f"survived: {fault.file} ## {fault.before} ## {after}", flush=True)
    print(f"{counts['found'] + counts['survived']} faults of {total} tried: {counts['found']} found, "
          f"{counts['known']} known survivors, {len(unknown)} unknown; "
          f"{counts['does not compile']} more do not compile")
    return 1 if unknown else 0


if __name__ == "__main__":
    sys.exit(main())
