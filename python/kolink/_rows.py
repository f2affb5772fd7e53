"""Arrays of any shape handed to the library row by row, in place wherever their memory allows."""

from __future__ import annotations

import warnings
from collections.abc import Callable, Mapping
from concurrent.futures import ThreadPoolExecutor
from typing import Any

import numpy as np
import numpy.typing as npt

Array = npt.NDArray[Any]
Row = Callable[[int, int, int], None]  # in, out, colours

PORTION = 65536  # colours that are copied at once where memory is not as the library takes it


class CopyWarning(UserWarning):
    """An array could not be handed over as it is, so that its colours are copied on the way."""


def _runs(array: Array) -> bool:
    """Whether every row, the last two axes, is one run of bytes."""
    strides, shape = array.strides, array.shape
    packed = shape[-1] == 1 or strides[-1] == array.itemsize
    if array.ndim > 1 and shape[-2] > 1:
        packed = packed and strides[-2] == shape[-1] * array.itemsize
    return bool(packed and array.dtype.isnative and array.flags.aligned)


def _whole(array: Array) -> bool:
    return bool(array.flags.c_contiguous and array.dtype.isnative and array.flags.aligned)


class Rows:
    """What converts rows of each type, and how many channels it has."""

    def __init__(self, inputs: int, outputs: int, rows: Mapping[str, Row]) -> None:
        self.inputs = inputs
        self.outputs = outputs
        self._rows = rows

    def apply(self, array: Array, out: Array | None, threads: int) -> Array:
        """Colours of the last axis of ``array`` into ``out``, which is made when it is None."""
        if not isinstance(array, np.ndarray):
            raise TypeError("an array of numpy is needed")
        kind = array.dtype.newbyteorder("=").name
        if kind not in self._rows:
            raise TypeError(f"an array of {array.dtype} cannot be converted; of " + ", ".join(self._rows))
        if array.ndim == 0 or array.shape[-1] != self.inputs:
            hint = "; put the axis there with array[..., None]" if self.inputs == 1 else ""
            raise ValueError(f"the last axis has to hold {self.inputs} channels{hint}")
        shape = array.shape[:-1] + (self.outputs,)
        if out is None:
            out = np.empty(shape, array.dtype.newbyteorder("="))
        elif out.shape != shape or out.dtype.newbyteorder("=") != array.dtype.newbyteorder("="):
            raise ValueError(f"out has to be an array of {kind} of the shape {shape}")
        elif not out.flags.writeable:
            raise ValueError("out cannot be written to")
        if array.size == 0 or out.size == 0:
            return out
        if np.may_share_memory(array, out):
            warnings.warn("array and out share memory: the colours are copied first", CopyWarning, stacklevel=3)
            array = array.copy()
        self._convert(self._rows[kind], array, out, threads)
        return out

    def _convert(self, row: Row, array: Array, out: Array, threads: int) -> None:
        if _whole(array) and _whole(out):
            self._portions(row, array, out, threads)
            return
        if not (_runs(array) and _runs(out)):
            what = "array" if not _runs(array) else "out"
            warnings.warn(f"{what} has strides or a byte order that the library does not take: its "
                          "colours are copied, some at a time", CopyWarning, stacklevel=4)
            self._copied(row, array, out)
            return
        width = array.shape[-2]  # one call a row: rows are runs, what is between them is not
        for at in np.ndindex(array.shape[:-2]):
            row(array[at].ctypes.data, out[at].ctypes.data, width)

    def _portions(self, row: Row, array: Array, out: Array, threads: int) -> None:
        count = array.size // self.inputs
        step_in, step_out = self.inputs * array.itemsize, self.outputs * out.itemsize
        threads = max(1, min(threads, count // 4096))
        if threads == 1:
            row(array.ctypes.data, out.ctypes.data, count)
            return
        edges = [count * at // threads for at in range(threads + 1)]
        with ThreadPoolExecutor(threads) as pool:
            for made in [pool.submit(row, array.ctypes.data + first * step_in,
                                     out.ctypes.data + first * step_out, last - first)
                         for first, last in zip(edges, edges[1:])]:
                made.result()

    def _copied(self, row: Row, array: Array, out: Array) -> None:
        lead = array.shape[:-1]
        for first in range(0, int(np.prod(lead)), PORTION):
            at = np.unravel_index(np.arange(first, min(first + PORTION, int(np.prod(lead)))), lead)
            given = np.ascontiguousarray(array[at], array.dtype.newbyteorder("="))
            made = np.empty((len(given), self.outputs), given.dtype)
            row(given.ctypes.data, made.ctypes.data, len(given))
            out[at] = made
