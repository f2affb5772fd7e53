"""What pyproject.toml cannot say: the version, which the headers have, and the wheel's tag.

The wheel carries the libraries that stand in kolink/lib. It serves every Python 3, as nothing in it
is compiled for one, and one kind of machine. It is no "manylinux": libkolink needs the system's
liblcms2, and both the C library that they were built with.
"""

import os
import re
from pathlib import Path

from setuptools import setup
from wheel.bdist_wheel import bdist_wheel


def version() -> str:
    place = Path(__file__).parent
    for header in (place / "version.h", place.parent / "include/kolink/version.h"):
        if header.exists():
            text = header.read_text()
            return ".".join(re.search(rf"KOLINK_VERSION_{part} (\d+)", text).group(1)
                            for part in ("MAJOR", "MINOR", "PATCH"))
    raise SystemExit("setup.py: version.h is missing")


class PlatformWheel(bdist_wheel):
    def finalize_options(self) -> None:
        super().finalize_options()
        self.root_is_pure = False

    def get_tag(self) -> tuple:
        return "py3", "none", os.environ.get("KO_WHEEL_PLATFORM") or super().get_tag()[2]


setup(version=version(), cmdclass={"bdist_wheel": PlatformWheel})
