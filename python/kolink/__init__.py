"""Colour management for printing: device links made, opened, and applied to arrays of numpy.

    import kolink
    link = kolink.Link.make("press.icc", "printer.icc", preserve="secondaries", bits=16)
    link.save("proof.icc")
    print_picture = link(picture)            # (height, width, 4), uint8 or uint16

Link, Profile and Transform may be used by several threads at once, a CalibrationSet by one at a
time. What the library cannot do raises KoLinkError with its reason.
"""

from kolink._library import KoLinkError, precise as _precise
from kolink._rows import CopyWarning
from kolink.calibration import CalibrationSet, Channel
from kolink.link import Link, LinkInfo
from kolink.profile import Profile, ProfileInfo, Transform
from kolink.quality import report

__all__ = [
    "CalibrationSet",
    "Channel",
    "CopyWarning",
    "KoLinkError",
    "Link",
    "LinkInfo",
    "Profile",
    "ProfileInfo",
    "Transform",
    "library_version",
    "report",
]


def library_version() -> str:
    """The version of the library that is at work.

    >>> library_version().count(".")
    2
    """
    return str(_precise().koPreciseVersion().decode())
