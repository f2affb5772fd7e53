"""Calibration sets: measured tone values of up to 16 channels, and their files (.clb)."""

from __future__ import annotations

import ctypes
import os
import weakref
from collections.abc import Iterator
from typing import Any

import numpy as np
import numpy.typing as npt

from kolink import _library
from kolink.profile import PathLike

ENCODING = "cp932"  # the library's own, Shift-JIS


def _text(value: str, size: int) -> bytes:
    try:
        data = value.encode(ENCODING)
    except UnicodeEncodeError as error:
        raise ValueError(f"{value!r} has characters that Shift-JIS lacks") from error
    if len(data) >= size or b"\0" in data:
        raise ValueError(f"{value!r} is longer than {size - 1} bytes of Shift-JIS, or holds a zero")
    return data


class Channel:
    """One channel of a set."""

    def __init__(self, owner: CalibrationSet, number: int) -> None:
        self._owner = owner
        self._number = number

    @property
    def _record(self) -> Any:
        return self._owner._channel(self._number)

    @property
    def name(self) -> str:
        """Up to 31 bytes of Shift-JIS."""
        return bytes(self._record.name).decode(ENCODING, "replace")

    @name.setter
    def name(self, value: str) -> None:
        _library.library().jKoCalibSetToneName(self._owner._handle, self._number,
                                               _text(value, _library.NAME_SIZE), self._record.lrgb)

    @property
    def colour(self) -> tuple[int, int, int]:
        """Red, green and blue of its display."""
        value = self._record.lrgb
        return (value & 255, value >> 8 & 255, value >> 16 & 255)

    @colour.setter
    def colour(self, value: tuple[int, int, int]) -> None:
        red, green, blue = value
        if not all(0 <= part <= 255 for part in value):
            raise ValueError("a colour is three numbers of 0 to 255")
        _library.library().jKoCalibSetToneName(self._owner._handle, self._number, None,
                                               red | green << 8 | blue << 16)

    @property
    def tones(self) -> npt.NDArray[np.float32]:
        """A copy of the tones: rows of x and y, by rising x."""
        record = self._record
        whole = np.ctypeslib.as_array(ctypes.cast(record.tones, ctypes.POINTER(ctypes.c_float)),
                                      (_library.MOST_TONES, 2))
        return np.array(whole[: record.toneCount], np.float32)

    def __len__(self) -> int:
        return int(self._record.toneCount)

    def __call__(self, x: npt.ArrayLike) -> npt.NDArray[np.float32]:
        """The output tones at x, a number or an array; 0 outside the tones' span."""
        given = np.asarray(x, np.float32)
        value, handle = _library.library().jKoCalibGetToneValue, self._owner._handle
        made = [value(handle, self._number, float(one)) for one in given.flat]
        return np.array(made, np.float32).reshape(given.shape)

    def set(self, x: float, y: float) -> None:
        """Stores a tone, in place of one of exactly that x."""
        if not _library.library().jKoCalibSetToneValue(self._owner._handle, self._number, x, y):
            raise ValueError(f"x is 0 to {self._owner.range}, and a channel holds {_library.MOST_TONES} tones")

    def delete(self, x: float) -> None:
        """Removes the tone of exactly that x; the first and the last one stay."""
        if not _library.library().jKoCalibDeleteToneValue(self._owner._handle, self._number, x):
            raise KeyError(f"no tone between the first and the last one has x = {x}")


class CalibrationSet:
    """A set, which belongs to one thread at a time.

    >>> curves = CalibrationSet(2)
    >>> curves[0].name = "Cyan"
    >>> curves[0].set(128, 100)
    >>> curves[0].tones.tolist()
    [[0.0, 0.0], [128.0, 100.0], [255.0, 255.0]]
    >>> float(curves[0](128))
    100.0
    """

    def __init__(self, channels: int, range: int = 255, limit: int | None = None) -> None:
        """Identity curves: x of 0 to ``range``, y of 0 to ``limit``."""
        _library.forget_reason()
        handle = _library.library().jKoCalibCreateCurve(channels, range, range if limit is None else limit)
        if not handle:
            raise _library.reason(None, "the set cannot be made")
        self._take(handle)

    def _take(self, handle: int) -> None:
        self._handle = handle
        self._record: Any = _library.CurveSet.from_address(handle)
        self._release = weakref.finalize(self, _library.library().jKoCalibReleaseCurve, handle)

    @classmethod
    def open(cls, path: PathLike) -> CalibrationSet:
        """Reads a file; raises KoLinkError when it is none."""
        _library.forget_reason()
        handle = _library.library().jKoCalibLoadCurve(os.fsencode(path))
        if not handle:
            raise _library.reason(os.fsdecode(path), "is no calibration set")
        made = cls.__new__(cls)
        made._take(handle)
        return made

    def save(self, path: PathLike | None = None) -> None:
        """Writes the set, to the file that it came from unless told otherwise: whole, or not."""
        _library.forget_reason()
        if not _library.library().jKoCalibSaveCurve(self._handle, os.fsencode(path) if path else None):
            raise _library.reason(os.fsdecode(path) if path else self.path, "cannot be written")

    def _channel(self, number: int) -> Any:
        at = ctypes.sizeof(_library.CurveSet) + number * ctypes.sizeof(_library.Channel)
        return _library.Channel.from_address(self._handle + at)

    @property
    def path(self) -> str | None:
        """The file that it was last loaded from or saved to."""
        return os.fsdecode(self._record.path) or None

    @property
    def range(self) -> int:
        """The largest x."""
        return int(self._record.range)

    @property
    def limit(self) -> int:
        """The largest y."""
        return int(self._record.limit)

    @property
    def title(self) -> str:
        """Up to 127 bytes of Shift-JIS."""
        return bytes(self._record.title).decode(ENCODING, "replace")

    @title.setter
    def title(self, value: str) -> None:
        _library.library().jKoCalibSetTitle(self._handle, _text(value, _library.TEXT_SIZE), None)

    @property
    def description(self) -> str:
        """Up to 127 bytes of Shift-JIS."""
        return bytes(self._record.desc).decode(ENCODING, "replace")

    @description.setter
    def description(self, value: str) -> None:
        _library.library().jKoCalibSetTitle(self._handle, None, _text(value, _library.TEXT_SIZE))

    def reset(self) -> None:
        """Makes every curve the identity."""
        _library.library().jKoCalibInitCurve(self._handle)

    def __len__(self) -> int:
        return int(self._record.channelCount)

    def __getitem__(self, number: int) -> Channel:
        if not 0 <= number < len(self):
            raise IndexError(f"the set has {len(self)} channels")
        return Channel(self, number)

    def __iter__(self) -> Iterator[Channel]:
        return (Channel(self, number) for number in range(len(self)))
