"""Profiles for the tests and for the examples in the docstrings."""

from __future__ import annotations

import os
from pathlib import Path
from typing import Any

import numpy as np
import pytest

DATA = Path(__file__).parent.parent / "data"
PRESS = str(DATA / "CGATS001Compat-v2-micro.icc")
PRINTER = os.environ.get("KO_PRINTER", "/usr/share/color/icc/ghostscript/default_cmyk.icc")
SRGB = str(DATA / "sRGB-v2-magic.icc")


@pytest.fixture(scope="session")
def press() -> str:
    return PRESS


@pytest.fixture(scope="session")
def printer() -> str:
    return PRINTER


@pytest.fixture(scope="session")
def srgb() -> str:
    return SRGB


@pytest.fixture
def colours() -> Any:
    """Seeded levels of any shape and type."""
    random = np.random.default_rng(7)

    def make(shape: tuple[int, ...], kind: Any) -> Any:
        if kind is np.float32:
            return random.random(shape, np.float32)
        return random.integers(0, np.iinfo(kind).max, shape, kind, endpoint=True)

    return make
