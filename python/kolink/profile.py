"""ICC profiles of versions 2.0 to 4.4, and what they say of themselves."""

from __future__ import annotations

import ctypes
import os
import weakref
from dataclasses import dataclass
from typing import Any, Union

import numpy.typing as npt

from kolink import _library
from kolink._rows import Array, Rows

PathLike = Union[str, bytes, "os.PathLike[str]"]
INTENTS = ("perceptual", "relative", "saturation", "absolute")


def number_of(value: str, choices: tuple[str, ...], what: str) -> int:
    """The number of a choice, or ValueError with the choices."""
    if value not in choices:
        raise ValueError(f"{what} is one of {', '.join(choices)}, not {value!r}")
    return choices.index(value)


@dataclass(frozen=True)
class ProfileInfo:
    """What a profile is. Signatures are texts: ``"prtr"``, ``"CMYK"``, ``"Lab"``."""

    version: str
    device_class: str
    space: str
    connection: str
    inputs: int
    outputs: int
    tables_to: tuple[str, ...]
    tables_from: tuple[str, ...]
    matrix: bool
    id: str
    white: tuple[float, float, float]
    total_ink: float
    name: str


class Profile:
    """A profile, which several threads may use at once.

    >>> printer = Profile.open(PRINTER)
    >>> printer.info.space, printer.info.device_class, printer.info.tables_to
    ('CMYK', 'prtr', ('A2B0', 'A2B1', 'A2B2'))
    """

    def __init__(self, handle: int, path: str | None) -> None:
        self._handle = handle
        self.path = path
        self._release = weakref.finalize(self, _library.precise().koPreciseReleaseProfile, handle)
        self.info = self._describe()

    @classmethod
    def open(cls, path: PathLike) -> Profile:
        """Reads a file; raises KoLinkError when it is no profile that can be used."""
        error = _library.Error()
        handle = _library.precise().koPreciseOpenProfile(os.fsencode(path), ctypes.byref(error))
        if not handle:
            name = os.fsdecode(path)
            raise _library.failure(error, {part: name for part in range(5)})
        return cls(handle, os.fsdecode(path))

    @classmethod
    def parse(cls, data: bytes) -> Profile:
        """Takes a profile from its bytes, such as a picture's."""
        error = _library.Error()
        handle = _library.precise().koPreciseParseProfile(data, len(data), ctypes.byref(error))
        if not handle:
            raise _library.failure(error, {})
        return cls(handle, None)

    def _describe(self) -> ProfileInfo:
        record: Any = _library.ProfileRecord()
        _library.precise().koPreciseDescribeProfile(self._handle, ctypes.byref(record))

        def tables(bits: int, name: str) -> tuple[str, ...]:
            return tuple(f"{name}{at}" for at in range(3) if bits >> at & 1)

        return ProfileInfo(
            version=f"{record.version >> 24}.{record.version >> 20 & 15}.{record.version >> 16 & 15}",
            device_class=_library.signature(record.deviceClass),
            space=_library.signature(record.space),
            connection=_library.signature(record.connection),
            inputs=record.inputs,
            outputs=record.outputs,
            tables_to=tables(record.tablesTo, "A2B"),
            tables_from=tables(record.tablesFrom, "B2A"),
            matrix=bool(record.matrix),
            id=bytes(record.id).hex(),
            white=(record.white[0], record.white[1], record.white[2]),
            total_ink=record.totalInk,
            name=record.name.decode("utf-8", "replace"),
        )

    def __repr__(self) -> str:
        return f"<kolink.Profile {self.info.name!r}, {self.info.space}>"


class Transform:
    """Colours from one profile to another without a link, in double arithmetic.

    Without a destination to L*a*b*, without a source from it. Device colours are levels of 8 or 16
    bits or floats 0..1; L*a*b* has its own numbers, and so floats alone.

    >>> import numpy as np
    >>> to_lab = Transform(Profile.open(PRINTER), None)
    >>> [round(float(value)) + 0 for value in to_lab(np.zeros(4, np.float32))]
    [100, 0, 0]
    """

    def __init__(self, source: Profile | None, destination: Profile | None, *,
                 intent: str = "relative", black_point_compensation: bool = False) -> None:
        lib = _library.precise()
        error = _library.Error()
        handle = lib.koPreciseMakeTransform(
            source._handle if source else None, destination._handle if destination else None,
            number_of(intent, INTENTS, "intent"), int(black_point_compensation), ctypes.byref(error))
        if not handle:
            raise _library.failure(error, {1: source.path if source else None,
                                           2: destination.path if destination else None})
        self._release = weakref.finalize(self, lib.koPreciseReleaseTransform, handle)

        def floats(given: int, made: int, count: int) -> None:
            lib.koPreciseTransformFloats(handle, given, made, count)

        def row8(given: int, made: int, count: int) -> None:
            lib.koPreciseTransformRow8(handle, given, made, count)

        def row16(given: int, made: int, count: int) -> None:
            lib.koPreciseTransformRow16(handle, given, made, count)

        rows = {"float32": floats}
        if _is_device(source, False) and _is_device(destination or source, destination is None):
            rows |= {"uint8": row8, "uint16": row16}
        self._rows = Rows(lib.koPreciseTransformInputs(handle), lib.koPreciseTransformOutputs(handle), rows)

    @property
    def inputs(self) -> int:
        """Channels that go in."""
        return self._rows.inputs

    @property
    def outputs(self) -> int:
        """Channels that come out."""
        return self._rows.outputs

    def apply(self, array: Array, out: Array | None = None, *, threads: int = 1) -> npt.NDArray[Any]:
        """The colours of ``array``, whose last axis holds the channels; see Link.apply."""
        return self._rows.apply(array, out, threads)

    __call__ = apply


def _is_device(profile: Profile | None, connection: bool) -> bool:
    if profile is None:
        return False
    space = profile.info.connection if connection else profile.info.space
    return space not in ("Lab", "XYZ")
