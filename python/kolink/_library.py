"""The two shared libraries: where they are found, and what their functions take.

Calls go through ctypes, which gives the interpreter's lock back for as long as they last.
"""

from __future__ import annotations

import ctypes
import errno
import functools
import os
from pathlib import Path
from typing import Any

VERSION = 1  # the first number of the interface, which the files' names carry

TEXT_SIZE = 128
NAME_SIZE = 32
PATH_SIZE = 260
MOST_TONES = 256


class Error(ctypes.Structure):
    """KoPreciseError."""

    _fields_ = [("code", ctypes.c_int32), ("part", ctypes.c_int32), ("text", ctypes.c_char * 1008)]
    code: int
    part: int
    text: bytes


class Options(ctypes.Structure):
    """KoPreciseOptions."""

    _fields_ = [
        ("size", ctypes.c_int32),
        ("method", ctypes.c_int32),
        ("intent", ctypes.c_int32),
        ("blackPointCompensation", ctypes.c_int32),
        ("black", ctypes.c_int32),
        ("preserve", ctypes.c_int32),
        ("white", ctypes.c_int32),
        ("bits", ctypes.c_int32),
        ("gridPoints", ctypes.c_int32),
        ("nodes", ctypes.c_int32),
        ("clip", ctypes.c_double),
        ("inkLimit", ctypes.c_double),
        ("saveInk", ctypes.c_double),
        ("saveInkAbove", ctypes.c_double),
        ("paper", ctypes.c_double * 4),
        ("paperFade", ctypes.c_double),
        ("blackCurve", ctypes.c_uint8 * 256),
    ]


class ProfileRecord(ctypes.Structure):
    """KoPreciseProfileInfo."""

    _fields_ = [
        ("version", ctypes.c_uint32),
        ("deviceClass", ctypes.c_uint32),
        ("space", ctypes.c_uint32),
        ("connection", ctypes.c_uint32),
        ("inputs", ctypes.c_int32),
        ("outputs", ctypes.c_int32),
        ("tablesTo", ctypes.c_int32),
        ("tablesFrom", ctypes.c_int32),
        ("matrix", ctypes.c_int32),
        ("id", ctypes.c_uint8 * 16),
        ("white", ctypes.c_double * 3),
        ("totalInk", ctypes.c_double),
        ("name", ctypes.c_char * 512),
    ]


class LinkRecord(ctypes.Structure):
    """KoPreciseLinkInfo."""

    _fields_ = [
        ("inputs", ctypes.c_int32),
        ("outputs", ctypes.c_int32),
        ("gridPoints", ctypes.c_int32),
        ("bits", ctypes.c_int32),
        ("nodes", ctypes.c_int32),
        ("intent", ctypes.c_int32),
        ("black", ctypes.c_int32),
        ("inverted", ctypes.c_int32),
        ("sourceSpace", ctypes.c_uint32),
        ("destinationSpace", ctypes.c_uint32),
        ("inkLimit", ctypes.c_double),
        ("meanInk", ctypes.c_double),
        ("tablesInk", ctypes.c_double),
        ("savedInk", ctypes.c_double),
        ("reached", ctypes.c_double),
        ("movedBlack", ctypes.c_double),
        ("limited", ctypes.c_double),
    ]


class FileOptions(ctypes.Structure):
    """KoPreciseFileOptions."""

    _fields_ = [
        ("size", ctypes.c_int32),
        ("editable", ctypes.c_int32),
        ("date", ctypes.c_int64),
        ("name", ctypes.c_char_p),
        ("editName", ctypes.c_char_p),
        ("editComment", ctypes.c_char_p),
        ("provenance", ctypes.c_char_p),
    ]


class Tone(ctypes.Structure):
    """CalibTone."""

    _fields_ = [("x", ctypes.c_float), ("y", ctypes.c_float)]


class Channel(ctypes.Structure):
    """CalibChannel."""

    _fields_ = [
        ("name", ctypes.c_char * NAME_SIZE),
        ("lrgb", ctypes.c_uint32),
        ("toneCount", ctypes.c_int32),
        ("tones", Tone * MOST_TONES),
    ]


class CurveSet(ctypes.Structure):
    """CalibCurveSet up to its channels, which follow it."""

    _fields_ = [
        ("title", ctypes.c_char * TEXT_SIZE),
        ("desc", ctypes.c_char * TEXT_SIZE),
        ("path", ctypes.c_char * PATH_SIZE),
        ("channelCount", ctypes.c_int32),
        ("range", ctypes.c_int32),
        ("limit", ctypes.c_int32),
        ("ctype", ctypes.c_int32),
        ("formatX", ctypes.c_char * 8),
        ("formatY", ctypes.c_char * 8),
    ]


class KoLinkError(Exception):
    """What the library could not do, in its own words.

    ``reason`` is the sentence, ``path`` the file that it is about, when there is one, and ``code``
    the number: a KO_PRECISE_... of the precise library, else the system's error number.
    """

    def __init__(self, reason: str, path: str | None = None, code: int = 0) -> None:
        super().__init__(f"{path}: {reason}" if path else reason)
        self.reason = reason
        self.path = path
        self.code = code


def _folders() -> list[Path]:
    """Where the libraries may be, before the system's own places."""
    named = os.environ.get("KOLINK_LIBRARY")
    carried = Path(__file__).parent / "lib"
    return [Path(named)] if named else [carried] if carried.is_dir() else []


def _load(name: str) -> ctypes.CDLL:
    file = f"lib{name}.so.{VERSION}"
    for folder in _folders():
        return ctypes.CDLL(str(folder / file), use_errno=True)
    return ctypes.CDLL(file, use_errno=True)


# What each function returns and takes: p a pointer, i int32, u uint32, n a size, d double,
# f float, s text.
_KINDS: dict[str, Any] = {
    "p": ctypes.c_void_p,
    "i": ctypes.c_int32,
    "u": ctypes.c_uint32,
    "n": ctypes.c_size_t,
    "d": ctypes.c_double,
    "f": ctypes.c_float,
    "s": ctypes.c_char_p,
    "-": None,
}
_PRECISE = {
    "koPreciseVersion": "s",
    "koPreciseOpenProfile": "psp",
    "koPreciseParseProfile": "psnp",
    "koPreciseReleaseProfile": "-p",
    "koPreciseDescribeProfile": "ipp",
    "koPreciseMakeTransform": "pppiip",
    "koPreciseReleaseTransform": "-p",
    "koPreciseTransformInputs": "ip",
    "koPreciseTransformOutputs": "ip",
    "koPreciseTransformFloats": "-pppn",
    "koPreciseTransformRow16": "-pppn",
    "koPreciseTransformRow8": "-pppn",
    "koPreciseInitOptions": "ip",
    "koPreciseMakeLink": "pppppp",
    "koPreciseReleaseLink": "-p",
    "koPreciseDescribeLink": "ipp",
    "koPreciseLinkFloats": "-pppn",
    "koPreciseLinkRow16": "-pppn",
    "koPreciseLinkRow8": "-pppn",
    "koPreciseLinkBytes": "ppppp",
    "koPreciseReleaseBytes": "-p",
    "koPreciseSaveLink": "ipspp",
}
_LIBRARY = {
    "jKoCalibCreateCurve": "piii",
    "jKoCalibReleaseCurve": "ip",
    "jKoCalibInitCurve": "ip",
    "jKoCalibLoadCurve": "ps",
    "jKoCalibSaveCurve": "ips",
    "jKoCalibGetToneValue": "fpif",
    "jKoCalibSetToneValue": "ipiff",
    "jKoCalibDeleteToneValue": "ipif",
    "jKoCalibSetTitle": "ipss",
    "jKoCalibSetToneName": "ipisu",
}


def _declared(library: ctypes.CDLL, functions: dict[str, str]) -> ctypes.CDLL:
    for name, kinds in functions.items():
        function = getattr(library, name)
        function.restype = _KINDS[kinds[0]]
        function.argtypes = [_KINDS[kind] for kind in kinds[1:]]
    return library


@functools.lru_cache(maxsize=None)
def precise() -> ctypes.CDLL:
    """The library of kolink/precise.h."""
    return _declared(_load("kolink-precise"), _PRECISE)


@functools.lru_cache(maxsize=None)
def library() -> ctypes.CDLL:
    """The library of kolink.h."""
    return _declared(_load("kolink"), _LIBRARY)


def failure(error: Error, paths: dict[int, str | None]) -> KoLinkError:
    """The exception for what the precise library told, with the file of the part it names."""
    text = error.text.decode("utf-8", "replace")
    return KoLinkError(text or "memory is short", paths.get(error.part), error.code)


def forget_reason() -> None:
    """Before a call whose reason is wanted."""
    ctypes.set_errno(0)


def reason(path: str | None, otherwise: str) -> KoLinkError:
    """The exception for what the library's last call left in errno."""
    number = ctypes.get_errno()
    if number == errno.EBADMSG:
        return KoLinkError(otherwise, path, number)
    return KoLinkError(os.strerror(number) if number else otherwise, path, number)


def signature(value: int) -> str:
    """The four characters of a signature."""
    return value.to_bytes(4, "big").decode("latin-1").rstrip(" \0")
