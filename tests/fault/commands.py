#!/usr/bin/env python3
"""The tool's commands under failing calls: each is run once for every allocation, read, write and
so on that it makes, and that one fails; what it says and writes is held against an undisturbed run.

  commands.py KOLINK LIBKOFAULTS FAULT_TESTS SCRATCH [--most N] [--own] [--places]
              [--only TEXT] [--without TEXT] [--seconds N]

--most limits the failures of one kind and way in one command to N, spread over the calls; a command
that takes long has then one of the kinds that matter most. --own leaves out the allocations that
every command makes for the tool's options. --places takes, of the allocations that the same chain of
calls makes, the first and the last alone, and those of a chain that an earlier command made too in
that command alone; of all other calls it takes every one. --seconds ends after that time, with the
commands that there was time for."""
import argparse
import array
import ctypes
import hashlib
import os
import shutil
import signal
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))

# Kind: the ways in which such a call fails, and the ways that are no failure.
WAYS = {
    "memory": ["once", "onwards"], "open": ["once", "onwards"], "read": ["once", "onwards"],
    "write": ["once", "onwards", "full"], "flush": ["once"], "rename": ["once"],
    "status": ["once"], "attribute": ["once"], "close": ["once"], "map": ["once"], "lock": ["once"],
}
LEGAL = {"read": ["part"], "write": ["part"], "lock": ["interrupted"]}

# Name, arguments, files that it writes.
COMMANDS = [
    ("link", "link --source in/press.icc --destination in/press8.icc --grid 9 --black in/curve.bkc -o out/a.icc",
     ["a.icc"]),
    ("link the classic way",
     "link --source in/press.icc --destination in/press8.icc --method classic --intent perceptual -o out/a.icc",
     ["a.icc"]),
    ("link with base and black",
     "link --base in/table.lut --black in/curve.bkc --paper 0,2,6,3 --name n --comment c -o out/a.icc",
     ["a.icc"]),
    ("link of a foreign table", "link --source in/foreign.nqp --destination in/printer.dcc -o out/a.icc",
     ["a.icc"]),
    ("info profile", "info in/press.icc", []),
    ("info link as JSON", "info --json in/link.icc", []),
    ("info table", "info in/table.lut", []),
    ("info curve", "info in/curve.bkc", []),
    ("info settings as JSON", "info --json in/printer.dcc", []),
    ("info set", "info in/set.clb", []),
    ("info colour table", "info in/cmyk.txt", []),
    ("plot link", "plot in/link.icc -o out/a.svg", ["a.svg"]),
    ("plot profile", "plot in/press8.icc -o -", []),
    ("plot curves", "plot in/curve.tnc -o out/a.svg", ["a.svg"]),
    ("plot set", "plot in/set.clb -o out/a.svg", ["a.svg"]),
    ("convert through a link", "convert --link in/link.icc 1,2,3,4", []),
    ("convert through a pair", "convert --source in/press.icc --destination in/press8.icc --grid 9 --percent 1,2,3,4", []),
    ("convert through the system",
     "convert --source in/monitor.icc --destination in/press8.icc --method system 1,2,3", []),
    ("convert through a table", "convert --table in/rgb.txt 1,2,3", []),
    ("convert from standard input", "convert --builtin --grey < in/colours", []),
    ("image through a pair",
     "image in/rgb.tif out/a.tif --source in/monitor.icc --destination in/press8.icc --grid 9 --embed", ["a.tif"]),
    ("image through a link", "image in/cmyk.tif out/a.tif --link in/link.icc --bits 16", ["a.tif"]),
    ("image of several pages", "image in/pages.tif out/a.tif --destination in/press8.icc --grid 9 --embed", ["a.tif"]),
    ("list", "list list", []),
    ("list as JSON", "list list --space CMYK --json", []),
    ("calib show", "calib show in/set.clb", []),
    ("calib value", "calib value in/plain.clb 1 33", []),
    ("calib set", "calib set out/a.clb 1 33 44", ["a.clb"]),
    ("calib delete", "calib delete out/a.clb 1 20", ["a.clb"]),
    ("calib new", "calib new out/b.clb --channels 2 --names A,B --title t", ["b.clb"]),
    ("calib plot", "calib plot in/set.clb -o out/a.svg", ["a.svg"]),
    ("table show", "table show in/cmyk.bin --space CMYK", []),
    ("table convert to text", "table convert in/rgb.bin --to text -o out/a.txt --space RGB", ["a.txt"]),
    ("table convert to binary", "table convert in/cmyk.txt --to binary -o out/a.bin", ["a.bin"]),
    ("table check", "table check in/rgb.txt", []),
    ("link that is reported and passes gates",
     "link --base in/table.lut --gates in/gates.json --report -o out/a.icc", ["a.icc"]),
    ("report", "report in/link.icc --gates in/gates.json", []),
    ("report as JSON and a page", "report in/link.icc --json --html out/a.html --language ja", ["a.html"]),
    ("check", "check in/press.icc in/link.icc", []),
    ("check and mend", "check in/press.icc --fix out/a.icc --json", ["a.icc"]),
    ("report judged by profiles", "report in/small.icc --full", []),
]
TAKING_LONG = {"report judged by profiles"}

parser = argparse.ArgumentParser()
parser.add_argument("kolink")
parser.add_argument("faults")
parser.add_argument("fault_tests")
parser.add_argument("scratch")
parser.add_argument("--most", type=int, default=1 << 60)
parser.add_argument("--own", action="store_true")
parser.add_argument("--places", action="store_true")
parser.add_argument("--only", default="")
parser.add_argument("--without", default="\n")
parser.add_argument("--seconds", type=float, default=float("inf"))
options = parser.parse_args()
kolink, faults, fault_tests = map(os.path.abspath, (options.kolink, options.faults, options.fault_tests))
started = time.time()

shutil.rmtree(options.scratch, ignore_errors=True)
os.makedirs(options.scratch)
os.chdir(options.scratch)
work = os.path.join(os.getcwd(), "work")
# The harness of the exported functions makes the files.
subprocess.run([fault_tests, work, "--only", "no scenario"], stdout=subprocess.DEVNULL)
os.chdir(work)
for name, samples, photometric in (("rgb", 3, 2), ("cmyk", 4, 5)):
    subprocess.run([sys.executable, os.path.join(HERE, "../cli/tiff.py"), "make", f"in/{name}.tif",
                    "9", "7", str(samples), "8", str(photometric), "1"], check=True)
subprocess.run([sys.executable, os.path.join(HERE, "../cli/tiff.py"), "pages", "in/pages.tif", "2",
                "in/monitor.icc"], check=True)
with open("in/colours", "w") as colours:
    colours.write("1 2 3\n200 100 50\n")
with open("in/gates.json", "w") as gates:
    gates.write('{"name": "n", "maxInk": 400, "requirePure": "none"}\n')


# The link whose profiles are found beside it.
subprocess.run([kolink, *"link --source in/press.icc --destination in/press8.icc --grid 9 -o in/small.icc".split()],
               check=True, env={"LC_ALL": "C.UTF-8", "HOME": work, "SOURCE_DATE_EPOCH": "1000000000"})


def content(path):
    with open(path, "rb") as file:
        return hashlib.blake2b(file.read()).digest()


def listing(folder):
    return {name: content(os.path.join(folder, name)) if os.path.isfile(os.path.join(folder, name))
            else "folder" for name in os.listdir(folder)}


inputs = {}
for folder in ("in", "list"):
    for name in os.listdir(folder):
        path = os.path.join(folder, name)
        inputs[path] = os.stat(path).st_mtime_ns


def prepare(writes):
    """The folder as it is before: old files where there are to be new ones."""
    shutil.rmtree("out", ignore_errors=True)
    os.mkdir("out")
    for name in writes:
        if name == "a.clb":
            shutil.copy("in/set.clb", "out/a.clb")
        elif name != "b.clb":  # which is never replaced
            with open(os.path.join("out", name), "w") as old:
                old.write("old" * 1000)


environment = {"LC_ALL": "C.UTF-8", "PATH": os.environ["PATH"], "HOME": work,
               "LD_PRELOAD": faults, "SOURCE_DATE_EPOCH": "1000000000"}
if "XDG_RUNTIME_DIR" in os.environ:
    environment["XDG_RUNTIME_DIR"] = os.environ["XDG_RUNTIME_DIR"]


class Run:
    def __init__(self, arguments, plan, report=None):
        words = arguments.split()
        stdin = None
        if "<" in words:
            stdin = words[-1]
            words = words[:-2]
        env = dict(environment, KO_FAULT=plan)
        if report:
            env["KO_FAULT_REPORT"] = report
            if options.places:
                env["KO_FAULT_SITES"] = report + ".sites"
        with open(stdin or os.devnull, "rb") as given:
            process = subprocess.Popen([kolink, *words], stdin=given, stdout=subprocess.PIPE,
                                       stderr=subprocess.PIPE, env=env)
            try:
                self.out, self.err = process.communicate(timeout=120)
                self.status = process.returncode
            except subprocess.TimeoutExpired:
                process.kill()
                self.out, self.err = process.communicate()
                self.status = "hang"
        self.files = listing("out")


def spread(count, most, first=0):
    chosen = max(0, min(count - first, most))
    return [first + i * (count - first) // chosen + 1 for i in range(chosen)]


def choose(calls, name):
    if name in TAKING_LONG and options.most != parser.get_default("most"):
        return {kind: [calls[kind] // 2 + 1] if kind in ("memory", "read") and calls[kind] else []
                for kind in WAYS}
    return {kind: spread(calls[kind], options.most, before_all if kind == "memory" else 0) for kind in WAYS}


chains = set()
if options.places:  # a chain is known by its addresses, which have to be the same each time
    ADDR_NO_RANDOMIZE = 0x0040000
    ctypes.CDLL(None).personality(ADDR_NO_RANDOMIZE)


def of_places(path):
    """Of the allocations of each chain of calls that is new, the first and the last."""
    sites = array.array("Q")
    with open(path, "rb") as file:
        sites.frombytes(file.read())
    first, last = {}, {}
    for at, site in enumerate(sites, 1):
        if site not in chains:
            first.setdefault(site, at)
            last[site] = at
    chains.update(first)
    return sorted(at for at in {*first.values(), *last.values()} if at > before_all)


def judge(run, expected, before, legal):
    if run.status == "hang":
        return "hang"
    if run.status < 0 or run.status > 128:
        return "crash"
    for name, held in run.files.items():
        if name not in before and name not in expected.files:
            return "left-over"
        if held not in (before.get(name), expected.files.get(name)):
            return "damaged file"
    for name in before:
        if name not in run.files:
            return "damaged file"
    if run.status == expected.status:
        if run.out == expected.out and run.files == expected.files and run.err == expected.err:
            return "same"
        if expected.status == 0:
            return "wrong success"
    if legal:
        return "wrong failure"
    one_line = run.err.startswith(b"kolink: ") and run.err.count(b"\n") == 1 and run.err.endswith(b"\n")
    if run.status != 1 or not one_line:
        return "not one line and 1"
    return "refused"


def calls_of(report):
    with open(report) as lines:
        return {kind: int(count) for kind, count in map(str.split, lines)}


before_all = 0
if options.own:  # what a command for an empty folder takes, up to where they part
    os.mkdir("empty")
    Run("list empty", "memory:once:0", os.path.abspath("../report"))
    before_all = calls_of("../report")["memory"] - 100

GOOD = ("same", "refused")
outcomes, injected, findings, done, left_out = {}, {}, 0, 0, []
allocations = 0
for name, arguments, writes in COMMANDS:
    if options.only not in name or options.without in name:
        continue
    if time.time() - started > options.seconds:
        left_out.append(name)
        continue
    prepare(writes)
    before = listing("out")
    expected = Run(arguments, "memory:once:0", os.path.abspath("../report"))
    prepare(writes)
    again = Run(arguments, "memory:once:0")
    if expected.status not in (0, 1) or expected.err or again.out != expected.out or \
            again.files != expected.files or (writes and expected.files == before):
        print(f"not ok - {name}: fails undisturbed: {expected.status} {expected.err.decode()}")
        findings += 1
        continue
    calls = calls_of("../report")
    chosen = choose(calls, name)
    if options.places:
        chosen["memory"] = of_places("../report.sites")
        allocations += calls["memory"]
    bad = count = 0
    clean = True
    for kind, ways in WAYS.items():
        for way in ways + LEGAL.get(kind, []):
            for at in chosen[kind]:
                if not clean:
                    prepare(writes)
                run = Run(arguments, f"{kind}:{way}:{at}")
                clean = run.files == before
                verdict = judge(run, expected, before, way in LEGAL.get(kind, []))
                outcomes[verdict] = outcomes.get(verdict, 0) + 1
                injected[kind] = injected.get(kind, 0) + 1
                count += 1
                if verdict not in GOOD:
                    bad += 1
                    said = run.err.decode(errors="replace").strip().replace("\n", " | ")
                    print(f"  {name}: {kind} {way} {at}: {verdict}: {run.status} {said[:100]}")
    for path, when in inputs.items():
        if os.stat(path).st_mtime_ns != when:
            print(f"  {name}: {path} has been written to")
            bad += 1
    findings += bad
    done += 1
    print(f"{'ok' if bad == 0 else 'not ok'} - {name}: {count} failures, {bad} findings", flush=True)
print(f"\n{done} commands")
print("failures:", ", ".join(f"{kind} {n}" for kind, n in injected.items()) + f", in all {sum(injected.values())}")
print("outcome:", ", ".join(f"{verdict} {n}" for verdict, n in sorted(outcomes.items())))
if options.places:
    print(f"allocations: {allocations} by {len(chains)} chains of calls, of each the first and the last")
if left_out:
    print("no time for:", ", ".join(left_out))
sys.exit(1 if findings or not done else 0)
