"""Profiles, transforms, calibration sets, reports."""

from __future__ import annotations

import errno
import os
from pathlib import Path
from typing import Any

import numpy as np
import pytest

import kolink


def test_a_profile_says_what_it_is(press: str, printer: str, srgb: str) -> None:
    info = kolink.Profile.open(press).info
    assert (info.space, info.connection, info.inputs, info.matrix) == ("CMYK", "Lab", 4, False)
    assert len(info.id) == 32 and info.name
    assert 200 < kolink.Profile.open(printer).info.total_ink <= 400
    screen = kolink.Profile.parse(Path(srgb).read_bytes())
    assert (screen.info.space, screen.info.device_class, screen.info.matrix) == ("RGB", "mntr", True)
    assert screen.info.version.startswith("2.") and screen.path is None


def test_a_transform_goes_both_ways(srgb: str, printer: str) -> None:
    screen, press = kolink.Profile.open(srgb), kolink.Profile.open(printer)
    lab = kolink.Transform(screen, None)(np.array([[1, 1, 1], [0, 0, 0]], np.float32))
    assert np.allclose(lab, [[100, 0, 0], [0, 0, 0]], atol=0.5)
    back = kolink.Transform(None, screen)(lab)
    assert np.allclose(back, [[1, 1, 1], [0, 0, 0]], atol=0.01)
    inks = kolink.Transform(screen, press, intent="perceptual")(np.full((2, 3), 255, np.uint8))
    assert inks.dtype == np.uint8 and inks.max() <= 2
    with pytest.raises(TypeError, match="float32"):
        kolink.Transform(screen, None)(np.zeros((2, 3), np.uint8))
    with pytest.raises(kolink.KoLinkError):
        kolink.Transform(None, None)


def test_a_grey_profile_wants_an_axis_of_one(printer: str) -> None:
    path = Path(__file__).parent.parent / "data" / "sGrey-v2-micro.icc"
    link = kolink.Link.make(path, printer, grid_points=9)
    picture = np.zeros((4, 5), np.uint8)
    with pytest.raises(ValueError, match="None"):
        link(picture)
    assert link(picture[..., None]).shape == (4, 5, 4)


def test_a_calibration_set_is_made_saved_and_read(tmp_path: Path) -> None:
    made = kolink.CalibrationSet(3, 100, 200)
    made.title, made.description = "試験", "of a test"
    made[1].name, made[1].colour = "Magenta", (255, 0, 128)
    made[1].set(50, 80)
    made[2].set(50, 999)
    with pytest.raises(ValueError):
        made[1].set(101, 1)
    with pytest.raises(KeyError):
        made[1].delete(0)
    made.save(tmp_path / "set.clb")
    assert made.path == str(tmp_path / "set.clb")

    read = kolink.CalibrationSet.open(tmp_path / "set.clb")
    assert (len(read), read.range, read.limit, read.title, read.description) == (3, 100, 200, "試験", "of a test")
    assert (read[1].name, read[1].colour) == ("Magenta", (255, 0, 128))
    assert read[1].tones.tolist() == [[0, 0], [50, 80], [100, 100]]
    assert read[2].tones[1].tolist() == [50, 200]
    curve = read[1](np.arange(101).reshape(1, 101))
    assert curve.shape == (1, 101) and curve[0, 50] == 80 and (np.diff(curve[0]) >= 0).all()
    read[1].delete(50)
    assert [len(channel) for channel in read] == [2, 2, 3]
    read.reset()
    assert read[2].tones.tolist() == [[0, 0], [100, 100]]
    with pytest.raises(IndexError):
        read[3]


def test_what_a_set_cannot_hold_is_refused(tmp_path: Path) -> None:
    for count in (0, 17):
        with pytest.raises(kolink.KoLinkError) as caught:
            kolink.CalibrationSet(count)
        assert caught.value.code == errno.EINVAL
    one = kolink.CalibrationSet(1)
    with pytest.raises(ValueError, match="Shift-JIS lacks"):
        one.title = "하나"
    with pytest.raises(ValueError, match="longer"):
        one[0].name = "n" * 32
    with pytest.raises(ValueError):
        one[0].colour = (0, 0, 256)
    with pytest.raises(kolink.KoLinkError):
        one.save()
    with pytest.raises(kolink.KoLinkError) as caught:
        kolink.CalibrationSet.open(tmp_path / "nothing.clb")
    assert caught.value.code == errno.ENOENT and "No such file" in caught.value.reason
    (tmp_path / "text.clb").write_text("no set")
    with pytest.raises(kolink.KoLinkError, match="is no calibration set"):
        kolink.CalibrationSet.open(tmp_path / "text.clb")


def test_a_report_is_the_tools(press: str, printer: str, tmp_path: Path) -> None:
    link = kolink.Link.make(press, printer, grid_points=9)
    told: dict[str, Any] = kolink.report(link, source=press, destination=printer)
    assert told["link"]["bits"] == 8 and "colour" in told
    link.save(tmp_path / "link.icc")
    assert kolink.report(tmp_path / "link.icc")["link"]["gridPoints"] == [9] * 4
    with pytest.raises(kolink.KoLinkError, match="not found") as caught:
        kolink.report(tmp_path / "nothing.icc")
    assert caught.value.code == 1


def test_a_report_needs_the_tool(monkeypatch: pytest.MonkeyPatch, tmp_path: Path) -> None:
    monkeypatch.delenv("KOLINK_TOOL", raising=False)
    monkeypatch.setenv("PATH", str(tmp_path))
    with pytest.raises(kolink.KoLinkError, match="is not installed"):
        kolink.report("link.icc")


def test_the_libraries_version_is_the_headers() -> None:
    header = (Path(__file__).parent.parent.parent / "include/kolink/version.h").read_text()
    wanted = ".".join(next(line.split()[2] for line in header.splitlines() if f"VERSION_{part} " in line)
                      for part in ("MAJOR", "MINOR", "PATCH"))
    assert kolink.library_version() == wanted
    assert os.environ["KOLINK_LIBRARY"]
