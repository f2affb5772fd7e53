#!/usr/bin/python3
"""A folder of pictures through `kolink image`, on the processors of one machine or of many.

    convert.py IN OUT [--workers 1,2] [--scheduler ADDRESS] [--tool KOLINK] -- HOW...

HOW is what `kolink image` takes: --link proof.icc, or --source and --destination. Without
--scheduler a cluster of this machine's own is started, with as many workers as it has processors or
as --workers says; several numbers convert all pictures once with each and tell both throughputs.

Each picture is one task of Dask. A worker that dies loses nothing: its tasks go to another. Nothing is
made twice: a picture that has been converted has a mark in OUT/.made, which tells its input's size and
time, and which only one worker can create; a second run does what has no mark, or a changed input.
"""

from __future__ import annotations

import argparse
import json
import os
import socket
import subprocess
import sys
import time
from pathlib import Path
from typing import Any

from dask.distributed import Client, LocalCluster, as_completed

ENDINGS = (".tif", ".tiff")


def end_with_worker() -> None:
    """In the tool's process: it ends when the worker that started it does."""
    import ctypes
    import signal

    ctypes.CDLL(None).prctl(1, signal.SIGKILL)  # PR_SET_PDEATHSIG


def make(tool: str, source: str, target: str, how: list[str]) -> dict[str, Any]:
    """Runs on a worker: converts one picture, unless it has been; what became of it."""
    given, made = Path(source), Path(target)
    mark = made.parent / ".made" / f"{made.name}.json"
    facts = given.stat()
    wanted = {"size": facts.st_size, "time": facts.st_mtime_ns, "how": how}
    for again in (True, False):
        try:
            old = json.loads(mark.read_text())
        except (FileNotFoundError, json.JSONDecodeError):
            break
        if made.exists() and all(old.get(key) == value for key, value in wanted.items()):
            return {"name": given.name, "state": "there"}
        if again:
            mark.unlink(missing_ok=True)  # of an older input, or its picture has gone
    made.parent.mkdir(parents=True, exist_ok=True)
    mark.parent.mkdir(parents=True, exist_ok=True)
    begun = time.monotonic()
    # The tool writes the whole picture or none, so that a worker killed here leaves none.
    done = subprocess.run([tool, "image", source, target, *how], capture_output=True, text=True, check=False,
                          preexec_fn=end_with_worker if sys.platform == "linux" else None)
    if done.returncode != 0:
        return {"name": given.name, "state": "failed", "said": done.stderr.strip()}
    by = {"worker": f"{socket.gethostname()}:{os.getppid()}", "seconds": round(time.monotonic() - begun, 3)}
    part = mark.with_suffix(f".{socket.gethostname()}.{os.getpid()}")
    part.write_text(json.dumps({**wanted, **by}))
    try:
        os.link(part, mark)  # whole, and for one alone
    except FileExistsError:
        return {"name": given.name, "state": "there"}
    finally:
        part.unlink()
    return {"name": given.name, "state": "made", **by}


def convert(client: Client, options: argparse.Namespace, out: Path) -> tuple[int, int, list[dict[str, Any]], float]:
    """All pictures; how many were made, were there, the failed ones, and the seconds."""
    folder = Path(options.input).resolve()
    pictures = sorted(one for one in folder.rglob("*") if one.suffix.lower() in ENDINGS)
    if not pictures:
        raise SystemExit(f"convert.py: {folder}: no pictures")
    how = [str(Path(one).resolve()) if Path(one).is_file() else one for one in options.how]
    begun, made, there, failed = time.monotonic(), 0, 0, []
    # Some at a time: a scheduler need not know a million tasks at once.
    waiting, at = iter(pictures), as_completed([], with_results=True)

    def hand_out(count: int) -> None:
        for picture, _ in zip(waiting, range(count)):
            at.add(client.submit(make, options.tool, str(picture), str(out / picture.relative_to(folder)), how,
                                 key=f"picture-{out}-{picture}", retries=3, pure=False))

    hand_out(1000)
    for future, result in at:
        future.release()  # the result is here: a worker that dies now takes nothing along
        state = result["state"]
        made += state == "made"
        there += state == "there"
        if state == "failed":
            failed.append(result)
        ready = made + there + len(failed)
        if sys.stderr.isatty() or ready == len(pictures) or ready % 100 == 0:
            print(f"{ready:,} of {len(pictures):,}", file=sys.stderr, end="\r" if sys.stderr.isatty() else "\n")
        hand_out(1)
    return made, there, failed, time.monotonic() - begun


def job(client: Client, options: argparse.Namespace, out: Path) -> tuple[bool, float]:
    """Converts, and tells what came of it."""
    workers = client.scheduler_info()["workers"]
    pids = client.run(os.getpid)
    print(f"{len(workers)} workers: " + " ".join(str(pid) for pid in pids.values()), flush=True)
    print(f"progress: {client.dashboard_link}  (numbers: {client.dashboard_link.rsplit('/', 1)[0]}/json/counts.json)", flush=True)
    made, there, failed, seconds = convert(client, options, out)
    rate = made / seconds if seconds else 0.0
    print(f"made {made:,}, there already {there:,}, failed {len(failed):,}; {rate:.2f} pictures a second", flush=True)
    for one in failed:
        print(f"{one['name']}: {one['said']}", file=sys.stderr)
    return not failed, rate


def main() -> int:
    parser = argparse.ArgumentParser(description="A folder of pictures through kolink image, by Dask.")
    parser.add_argument("input")
    parser.add_argument("output")
    parser.add_argument("--workers", default=str(os.cpu_count()), help="how many, or several numbers to compare")
    parser.add_argument("--scheduler", help="the address of a scheduler that runs")
    parser.add_argument("--tool", default="kolink", help="the tool, as every worker finds it")
    parser.add_argument("how", nargs="+", metavar="HOW", help="behind --: what kolink image takes")
    options = parser.parse_args()
    out = Path(options.output).resolve()
    if options.scheduler:
        with Client(options.scheduler) as client:
            return 0 if job(client, options, out)[0] else 1
    counts = [int(count) for count in options.workers.split(",")]
    good, rates = True, []
    for count in counts:
        place = out / f"{count}-workers" if len(counts) > 1 else out
        with LocalCluster(n_workers=count, threads_per_worker=1, host="127.0.0.1", dashboard_address="127.0.0.1:0",
                          silence_logs=50) as cluster, Client(cluster) as client:
            well, rate = job(client, options, place)
        good, rates = good and well, [*rates, rate]
    if len(counts) > 1:
        print("; ".join(f"{count} workers: {rate:.2f} pictures a second" for count, rate in zip(counts, rates)))
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
