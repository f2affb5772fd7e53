"""The names that the examples in the docstrings use."""

from __future__ import annotations

import os
from pathlib import Path

import pytest

DATA = Path(__file__).parent.parent / "tests" / "data"


@pytest.fixture(autouse=True)
def profiles(doctest_namespace: dict[str, str]) -> None:
    doctest_namespace["PRESS"] = str(DATA / "CGATS001Compat-v2-micro.icc")
    doctest_namespace["PRINTER"] = os.environ.get(
        "KO_PRINTER", "/usr/share/color/icc/ghostscript/default_cmyk.icc")
