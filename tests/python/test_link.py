"""Links made and opened, and the arrays that go through them."""

from __future__ import annotations

import os
import subprocess
import threading
import warnings
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any

import numpy as np
import pytest

import kolink

Colours = Callable[[tuple[int, ...], Any], Any]
KINDS = [np.uint8, np.uint16, np.float32]


@pytest.fixture(scope="module")
def link(press: str, printer: str) -> kolink.Link:
    return kolink.Link.make(press, printer, grid_points=9, preserve="secondaries")


@pytest.fixture(autouse=True)
def no_copies() -> Any:
    """A copy that nobody expects is a failure."""
    with warnings.catch_warnings():
        warnings.simplefilter("error", kolink.CopyWarning)
        yield


def test_a_made_link_says_what_it_is(link: kolink.Link) -> None:
    assert (link.source_space, link.destination_space, link.inputs, link.outputs) == ("CMYK", "CMYK", 4, 4)
    assert link.info is not None
    assert (link.info.grid_points, link.info.bits, link.info.black) == (9, 8, "plane")
    assert 0 < link.info.mean_ink <= link.info.ink_limit <= 400


@pytest.mark.parametrize("kind", KINDS)
def test_every_shape_gives_what_its_single_colours_give(link: kolink.Link, colours: Colours, kind: Any) -> None:
    given = colours((5, 3, 7, 4), kind)
    made = link(given)
    assert made.dtype == kind and made.shape == given.shape
    for at in np.ndindex(given.shape[:-1]):
        assert np.array_equal(link(given[at]), made[at])
    assert np.array_equal(link(given.reshape(-1, 4)), made.reshape(-1, 4))


def test_a_saved_link_gives_the_levels_of_the_made_one(link: kolink.Link, colours: Colours, tmp_path: Path) -> None:
    path = tmp_path / "link.icc"
    link.save(path, date=0)
    opened = kolink.Link.open(path)
    bytes_given = colours((10000, 4), np.uint8)
    assert np.array_equal(opened(bytes_given), link(bytes_given))
    words = colours((10000, 4), np.uint16)
    assert np.abs(opened(words).astype(int) - link(words)).max() <= 1
    assert kolink.Link.parse(path.read_bytes())(bytes_given).tobytes() == link(bytes_given).tobytes()
    assert link.to_bytes(date=0) == path.read_bytes()
    assert opened.info is None and opened.path == str(path)


def test_an_opened_link_gives_what_the_tool_gives(link: kolink.Link, colours: Colours, tmp_path: Path) -> None:
    link.save(tmp_path / "link.icc")
    given = colours((300, 4), np.uint8)
    lines = "\n".join(" ".join(map(str, colour)) for colour in given.tolist())
    told = subprocess.run([os.environ["KOLINK_TOOL"], "convert", "--link", str(tmp_path / "link.icc")],
                          input=lines, capture_output=True, text=True, check=True).stdout
    wanted = np.array([line.split() for line in told.splitlines()], int)
    assert np.array_equal(kolink.Link.open(tmp_path / "link.icc")(given), wanted)


def test_a_link_of_16_bits_from_rgb(srgb: str, printer: str, tmp_path: Path) -> None:
    link = kolink.Link.make(srgb, printer, bits=16, grid_points=9, black="keep")
    assert (link.inputs, link.outputs, link.source_space) == (3, 4, "RGB")
    grey = np.full((2, 2, 3), 30000, np.uint16)
    assert link(grey)[..., :3].max() == 0 and link(grey)[..., 3].min() > 0
    link.save(tmp_path / "link.icc")
    assert np.array_equal(kolink.Link.open(tmp_path / "link.icc")(grey), link(grey))


def test_the_result_goes_into_out_without_a_copy(link: kolink.Link, colours: Colours) -> None:
    given = colours((40, 30, 4), np.uint8)
    out = np.zeros_like(given)
    assert link(given, out) is out
    assert np.array_equal(out, link(given))


def test_parts_and_flipped_pictures_need_no_copy(link: kolink.Link, colours: Colours) -> None:
    whole = colours((40, 30, 4), np.uint16)
    wanted = link(whole)
    out = np.zeros_like(whole)
    link(whole[5:25, 3:20], out[10:30, 8:25])
    assert np.array_equal(out[10:30, 8:25], wanted[5:25, 3:20])
    assert not out[:10].any() and not out[:, :8].any() and not out[:, 25:].any()
    assert np.array_equal(link(whole[::-1]), wanted[::-1])
    assert np.array_equal(link(whole[::3]), wanted[::3])


@pytest.mark.parametrize("strided", [
    lambda whole: whole[:, ::2], lambda whole: whole[:, ::-1], lambda whole: whole.swapaxes(0, 1),
    lambda whole: np.moveaxis(np.ascontiguousarray(np.moveaxis(whole, -1, 0)), 0, -1),
    lambda whole: whole.astype(">u2"), lambda whole: np.broadcast_to(whole[:1], whole.shape)])
def test_other_strides_are_copied_and_said(link: kolink.Link, colours: Colours, strided: Any) -> None:
    whole = strided(colours((40, 31, 4), np.uint16))
    contiguous = np.ascontiguousarray(whole).astype("=u2")
    wanted = link(contiguous)
    if whole.strides[0] == 0:  # rows repeated are runs all the same
        assert np.array_equal(link(whole), wanted)
        return
    with pytest.warns(kolink.CopyWarning):
        made = link(whole)
    assert np.array_equal(made, wanted)
    if whole.flags.writeable:
        out = strided(np.zeros((40, 31, 4), np.uint16))
        with pytest.warns(kolink.CopyWarning):
            link(contiguous, out)
        assert np.array_equal(out, wanted)


def test_more_colours_than_a_portion_are_copied_right(link: kolink.Link, colours: Colours) -> None:
    whole = colours((150000, 2, 4), np.uint8)
    with pytest.warns(kolink.CopyWarning):
        assert np.array_equal(link(whole.swapaxes(0, 1)), link(whole).swapaxes(0, 1))


def test_an_array_may_be_its_own_out(link: kolink.Link, colours: Colours) -> None:
    given = colours((50, 4), np.uint8)
    wanted = link(given)
    with pytest.warns(kolink.CopyWarning):
        link(given, given)
    assert np.array_equal(given, wanted)
    shifted = colours((51, 4), np.uint8)
    wanted = link(shifted[:-1].copy())
    with pytest.warns(kolink.CopyWarning):
        link(shifted[:-1], shifted[1:])
    assert np.array_equal(shifted[1:], wanted)


def test_arrays_that_do_not_fit_are_refused(link: kolink.Link) -> None:
    good = np.zeros((3, 4), np.uint8)
    bad: list[Any] = [np.zeros((3, 3), np.uint8), np.zeros(4, np.float64), np.uint8(3), np.zeros((), np.uint8)]
    for one in bad:
        with pytest.raises((TypeError, ValueError)):
            link(one)
    fixed = np.zeros((3, 4), np.uint8)
    fixed.flags.writeable = False
    unfit: list[Any] = [np.zeros((3, 3), np.uint8), np.zeros((3, 4), np.uint16), fixed]
    for out in unfit:
        with pytest.raises(ValueError):
            link(good, out)
    assert link(np.zeros((0, 4), np.uint8)).shape == (0, 4)
    assert link(np.zeros((3, 0, 4), np.uint16)).shape == (3, 0, 4)


def test_threads_give_the_same(link: kolink.Link, colours: Colours) -> None:
    given = colours((100003, 4), np.uint8)
    assert np.array_equal(link(given, threads=5), link(given))
    with ThreadPoolExecutor(4) as pool:
        assert all(np.array_equal(made, link(given)) for made in pool.map(link, [given] * 8))


def test_the_interpreter_is_free_meanwhile(link: kolink.Link, colours: Colours) -> None:
    given = np.tile(colours((1000, 4), np.uint16), (2000, 1))
    started, done = threading.Event(), threading.Event()

    def work() -> None:
        started.set()
        link(given)
        done.set()

    worker = threading.Thread(target=work)
    worker.start()
    started.wait()
    turns = 0
    while not done.is_set():  # with the lock held it would turn once or twice
        turns += 1
    worker.join()
    assert turns > 1000


def test_links_are_released_and_may_go_in_any_order(press: str, printer: str) -> None:
    profile = kolink.Profile.open(printer)
    links = [kolink.Link.make(press, profile, grid_points=9) for _ in range(3)]
    del profile
    black = np.array([0, 0, 0, 255], np.uint8)
    while links:
        assert links.pop(0)(black)[:3].max() == 0


def test_what_the_library_refuses_is_told_with_the_file(press: str, printer: str, tmp_path: Path) -> None:
    nothing = str(tmp_path / "nothing.icc")
    with pytest.raises(kolink.KoLinkError, match="cannot be opened") as caught:
        kolink.Link.make(press, nothing)
    assert caught.value.path == nothing and caught.value.code == 2
    (tmp_path / "text.icc").write_text("no profile")
    for make in (kolink.Link.open, kolink.Profile.open):
        with pytest.raises(kolink.KoLinkError) as caught:
            make(tmp_path / "text.icc")
        assert caught.value.path and caught.value.path.endswith("text.icc")
    with pytest.raises(kolink.KoLinkError, match="it is no link"):
        kolink.Link.open(printer)
    with pytest.raises(kolink.KoLinkError):
        kolink.Link.parse(b"")
    with pytest.raises(kolink.KoLinkError, match="is below|is not"):
        kolink.Link.make(press, printer, grid_points=9, ink_limit=20)
    with pytest.raises(ValueError, match="intent is one of"):
        kolink.Link.make(press, printer, intent="pretty")
    with pytest.raises(ValueError, match="256 levels"):
        kolink.Link.make(press, printer, black=np.zeros(4, np.uint8))


def test_a_file_that_cannot_be_written_is_told(link: kolink.Link, tmp_path: Path) -> None:
    with pytest.raises(kolink.KoLinkError, match="cannot be written"):
        link.save(tmp_path / "nowhere" / "link.icc")
    link.save(tmp_path / "link.icc")
    with pytest.raises(kolink.KoLinkError, match="only a made one"):
        kolink.Link.open(tmp_path / "link.icc").save(tmp_path / "again.icc")
    assert os.listdir(tmp_path) == ["link.icc"]


def test_options_reach_the_link(press: str, printer: str) -> None:
    curve = (np.arange(256) // 2).astype(np.uint8)
    black = kolink.Link.make(press, printer, grid_points=9, black=curve, white="profile")
    assert black(np.array([0, 0, 0, 255], np.uint8)).tolist() == [0, 0, 0, 127]
    tinted = kolink.Link.make(press, printer, grid_points=9, paper=(0, 5, 10, 0))
    assert tinted(np.zeros(4, np.uint8))[2] > 5
    limited = kolink.Link.make(press, printer, grid_points=9, ink_limit=200)
    assert limited(np.full(4, 255, np.uint8)).astype(int).sum() <= 2 * 255 + 4
    assert limited.info is not None and limited.info.ink_limit == 200
    # The dialogs' data is there as the size of a link of 33 points allows it.
    whole = kolink.Link.make(press, printer, method="tables")
    assert b"CTRL:" in whole.to_bytes() and b"CTRL:" not in whole.to_bytes(editable=False)
    assert "Zürich".encode("utf-16-be") in whole.to_bytes(name="Zürich")
