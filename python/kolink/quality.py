"""What a link costs, as ``kolink report`` tells it.

The libraries have no function for it: the tool does the work, and has to be installed. It is the
one in the environment's KOLINK_TOOL, else the first in PATH.
"""

from __future__ import annotations

import json
import os
import shutil
import subprocess
import tempfile
from pathlib import Path
from typing import Any, cast

from kolink._library import KoLinkError
from kolink.link import Link
from kolink.profile import INTENTS, PathLike, number_of


def _tool() -> str:
    tool = os.environ.get("KOLINK_TOOL") or shutil.which("kolink")
    if not tool:
        raise KoLinkError("the tool kolink, which measures links, is not installed")
    return tool


def report(link: PathLike | Link, *, source: PathLike | None = None,
           destination: PathLike | None = None, intent: str | None = None,
           black_point_compensation: bool = False) -> dict[str, Any]:
    """Measures a link, one that was made here or a file; docs/report.md says what each figure is.

    Without ``source`` and ``destination`` the profiles that the link names are looked for beside it;
    where they are not found everything but colour is measured.

    >>> report(Link.make(PRESS, PRINTER, grid_points=9))["link"]["gridPoints"]
    [9, 9, 9, 9]
    """
    if isinstance(link, Link) and link.path is None:
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "link.icc"
            link.save(path)
            return report(path, source=source, destination=destination, intent=intent,
                          black_point_compensation=black_point_compensation)
    path_of = cast(PathLike, link.path if isinstance(link, Link) else link)
    arguments = [_tool(), "report", "--json"]
    for option, value in (("--source", source), ("--destination", destination)):
        if value is not None:
            arguments += [option, os.fsdecode(value)]
    if intent is not None:
        number_of(intent, INTENTS, "intent")
        arguments += ["--intent", intent]
    if black_point_compensation:
        arguments += ["--bpc"]
    done = subprocess.run([*arguments, "--", os.fsdecode(path_of)], capture_output=True, text=True,
                          encoding="utf-8", check=False)
    if done.returncode != 0:
        raise KoLinkError(done.stderr.strip().removeprefix("kolink: ") or "kolink ended without a word",
                          code=done.returncode)
    return cast(dict[str, Any], json.loads(done.stdout))
