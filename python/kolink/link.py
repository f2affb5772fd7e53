"""Device links: made from two profiles or opened, and applied to arrays."""

from __future__ import annotations

import ctypes
import os
import time
import weakref
from dataclasses import dataclass
from typing import Any, Union

import numpy as np
import numpy.typing as npt

from kolink import _library
from kolink._rows import Array, Rows
from kolink.profile import INTENTS, PathLike, Profile, Transform, number_of

METHODS = ("precise", "tables")
BLACKS = ("default", "plane", "match", "keep", "none")
PRESERVES = ("none", "primaries", "secondaries", "duplex", "triplex")
WHITES = ("clean", "profile")
NODES = ("even", "library")


@dataclass(frozen=True)
class LinkInfo:
    """How a link was made and what came of it; percentages are of 100."""

    grid_points: int
    bits: int
    nodes: str
    intent: str
    black: str
    inverted: bool
    ink_limit: float
    mean_ink: float
    tables_ink: float
    saved_ink: float
    reached: float
    moved_black: float
    limited: float


class Link:
    """A device link, which several threads may use at once.

    ``source_space`` and ``destination_space`` are ``"CMYK"``, ``"RGB"``, ``"GRAY"``; ``inputs`` and
    ``outputs`` the channels of each. ``info`` is there for links made here, else None.

    >>> import numpy as np
    >>> link = Link.make(PRESS, PRINTER, preserve="secondaries")
    >>> link(np.array([0, 0, 0, 255], np.uint8))[:3].tolist()  # black ink alone stays alone
    [0, 0, 0]
    >>> picture = np.zeros((40, 30, 4), np.uint16)
    >>> link(picture).shape
    (40, 30, 4)
    """

    def __init__(self, rows: Rows, spaces: tuple[str, str], *, handle: int = 0,
                 info: LinkInfo | None = None, path: str | None = None, kept: object = None) -> None:
        self._rows = rows
        self._handle = handle  # of a link that was made here
        self._kept = kept
        self.source_space, self.destination_space = spaces
        self.info = info
        self.path = path

    @classmethod
    def open(cls, path: PathLike) -> Link:
        """Opens the ICC device link of any maker, as ICC readers read it: 8 or 16 bits, version 2
        or 4. The nodes of a link of ``--nodes library`` or ``--method classic`` are met a little
        early that way, at most one level of 255."""
        return cls._of(Profile.open(path))

    @classmethod
    def parse(cls, data: bytes) -> Link:
        """The same from the bytes of a file."""
        return cls._of(Profile.parse(data))

    @classmethod
    def _of(cls, profile: Profile) -> Link:
        if profile.info.device_class != "link":
            raise _library.KoLinkError(
                f"is a profile of class {profile.info.device_class!r}: it is no link", profile.path)
        transform = Transform(profile, None)
        return cls(transform._rows, (profile.info.space, profile.info.connection), path=profile.path,
                   kept=(transform, profile))

    @classmethod
    def make(cls, source: PathLike | Profile, destination: PathLike | Profile, *,
             base: PathLike | Profile | None = None, method: str = "precise", intent: str = "relative",
             black_point_compensation: bool = False,
             black: Union[str, npt.NDArray[np.uint8]] = "default", preserve: str = "none",
             white: str = "clean", paper: tuple[float, float, float, float] | None = None,
             paper_fade: float | None = None, bits: int = 8, grid_points: int = 0,
             nodes: str = "even", clip: float = 0, ink_limit: float | str = "profile",
             save_ink: float = 0, save_ink_above: float = 70) -> Link:
        """Makes a link from RGB, CMYK or grey to CMYK or RGB.

        The options are those of ``kolink link``; docs/precise.md says what each brings and costs.

        black
            ``"default"``, ``"plane"``, ``"match"``, ``"keep"``, ``"none"``, or 256 levels: the level
            that pure K of each level gets.
        paper
            percent of C, M, Y, K laid under light colours; ``paper_fade`` is the total ink in
            percent at which it has gone.
        ink_limit
            percent of total ink, ``"profile"`` or ``"none"``.

        >>> Link.make(PRESS, PRINTER, grid_points=9, ink_limit=50)
        Traceback (most recent call last):
        kolink._library.KoLinkError: the ink limit is below what black needs, 100 percent
        """
        lib = _library.precise()
        profiles = [one if isinstance(one, Profile) or one is None else Profile.open(one)
                    for one in (source, destination, base)]
        options: Any = _library.Options()
        lib.koPreciseInitOptions(ctypes.byref(options))
        options.method = number_of(method, METHODS, "method")
        options.intent = number_of(intent, INTENTS, "intent")
        options.blackPointCompensation = int(black_point_compensation)
        if isinstance(black, str):
            options.black = number_of(black, BLACKS, "black")
        else:
            options.black = len(BLACKS)
            curve = np.asarray(black)
            if curve.shape != (256,) or curve.dtype != np.uint8:
                raise ValueError("black as a curve is an array of 256 levels of uint8")
            options.blackCurve[:] = curve.tolist()
        options.preserve = number_of(preserve, PRESERVES, "preserve")
        options.white = number_of(white, WHITES, "white")
        if paper is not None:
            options.white = len(WHITES)
            options.paper[:] = paper
        if paper_fade is not None:
            options.paperFade = paper_fade
        options.bits = bits
        options.gridPoints = grid_points
        options.nodes = number_of(nodes, NODES, "nodes")
        options.clip = clip
        if isinstance(ink_limit, str):
            options.inkLimit = -1.0 - number_of(ink_limit, ("profile", "none"), "ink_limit")
        else:
            options.inkLimit = ink_limit
        options.saveInk = save_ink
        options.saveInkAbove = save_ink_above
        error = _library.Error()
        handle = lib.koPreciseMakeLink(*(one._handle if one else None for one in profiles),
                                       ctypes.byref(options), ctypes.byref(error))
        if not handle:
            raise _library.failure(error, {part: one.path for part, one in enumerate(profiles, 1) if one})
        return cls._made(handle)

    @classmethod
    def _made(cls, handle: int) -> Link:
        lib = _library.precise()
        record: Any = _library.LinkRecord()
        lib.koPreciseDescribeLink(handle, ctypes.byref(record))

        def floats(given: int, made: int, count: int) -> None:
            lib.koPreciseLinkFloats(handle, given, made, count)

        def row8(given: int, made: int, count: int) -> None:
            lib.koPreciseLinkRow8(handle, given, made, count)

        def row16(given: int, made: int, count: int) -> None:
            lib.koPreciseLinkRow16(handle, given, made, count)

        info = LinkInfo(
            grid_points=record.gridPoints, bits=record.bits, nodes=NODES[record.nodes],
            intent=INTENTS[record.intent], black=(BLACKS + ("curve",))[record.black],
            inverted=bool(record.inverted), ink_limit=record.inkLimit, mean_ink=record.meanInk,
            tables_ink=record.tablesInk, saved_ink=record.savedInk, reached=record.reached,
            moved_black=record.movedBlack, limited=record.limited)
        rows = Rows(record.inputs, record.outputs, {"uint8": row8, "uint16": row16, "float32": floats})
        spaces = (_library.signature(record.sourceSpace), _library.signature(record.destinationSpace))
        link = cls(rows, spaces, handle=handle, info=info)
        weakref.finalize(link, lib.koPreciseReleaseLink, handle)
        return link

    @property
    def inputs(self) -> int:
        """Channels that go in."""
        return self._rows.inputs

    @property
    def outputs(self) -> int:
        """Channels that come out."""
        return self._rows.outputs

    def apply(self, array: Array, out: Array | None = None, *, threads: int = 1) -> npt.NDArray[Any]:
        """Converts the colours of an array whose last axis holds the channels.

        array
            uint8 and uint16 levels, or float32 of 0..1, of any shape.
        out
            where the colours go: of the same type, and of array's shape but for the last axis. Made
            when it is not given.
        threads
            so many share a contiguous array.

        Nothing is copied as long as the rows of both arrays, their last two axes, are runs of
        memory: a whole picture, a part cut out of one, a flipped one. What is strided otherwise
        (planes that are moved to the last axis, every second pixel, another byte order) is copied,
        65,536 colours at a time, and an ``out`` that shares memory with ``array`` has array copied
        whole; both are said by a CopyWarning. The interpreter's lock is free meanwhile.
        """
        return self._rows.apply(array, out, threads)

    __call__ = apply

    def to_bytes(self, *, name: str | None = None, editable: bool | None = None,
                 provenance: str | None = None, date: int | None = None) -> bytes:
        """The bytes of a made link's file; see save."""
        lib = _library.precise()
        size, error = ctypes.c_size_t(), _library.Error()
        options = self._file_options(name, editable, provenance, date)
        block = lib.koPreciseLinkBytes(self._handle, ctypes.byref(options), ctypes.byref(size),
                                       ctypes.byref(error))
        if not block:
            raise _library.failure(error, {})
        try:
            return ctypes.string_at(block, size.value)
        finally:
            lib.koPreciseReleaseBytes(block)

    def save(self, path: PathLike, *, name: str | None = None, editable: bool | None = None,
             provenance: str | None = None, date: int | None = None) -> None:
        """Writes a made link: whole, or the old file stays.

        name
            what foreign lists show; made from the profiles' names when it is not given.
        editable
            with the data that the dialogs edit, which only CMYK links of 8 bits and 33 points can
            have, and have unless told otherwise.
        provenance
            further lines on how it was made.
        date
            seconds since 1970; SOURCE_DATE_EPOCH or now when it is not given.
        """
        error = _library.Error()
        options = self._file_options(name, editable, provenance, date)
        if not _library.precise().koPreciseSaveLink(self._handle, os.fsencode(path),
                                                    ctypes.byref(options), ctypes.byref(error)):
            raise _library.failure(error, {part: os.fsdecode(path) for part in range(5)})

    def _file_options(self, name: str | None, editable: bool | None, provenance: str | None,
                      date: int | None) -> _library.FileOptions:
        if not self.info:
            raise _library.KoLinkError("an opened link is a file already: only a made one is saved", self.path)
        fits = (self.info.bits == 8 and self.info.grid_points == 33 and self.inputs == self.outputs == 4)
        if date is None:
            date = int(os.environ.get("SOURCE_DATE_EPOCH", time.time()))
        return _library.FileOptions(
            size=ctypes.sizeof(_library.FileOptions), editable=int(fits if editable is None else editable),
            date=date, name=name.encode() if name is not None else None,
            provenance=provenance.encode() if provenance is not None else None)

    def __repr__(self) -> str:
        return f"<kolink.Link from {self.source_space} to {self.destination_space}>"
