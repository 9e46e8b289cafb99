"""A wheel that carries the library belongs to one platform, and to any Python 3 there.

scripts/build-wheel puts the library into the package, and the command-line tool beside it, before
it calls this.
"""
from pathlib import Path

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

FOLDER = Path(__file__).parent
HAS_LIBRARY = any(FOLDER.glob("corvantis/lib*.so.1"))
TOOL = [("bin", ["tool/corvantis"])] if (FOLDER / "tool/corvantis").exists() else []


class PlatformDistribution(Distribution):
    def has_ext_modules(self):
        return HAS_LIBRARY


class PlatformWheel(bdist_wheel):
    def get_tag(self):
        platform = super().get_tag()[2]
        return "py3", "none", platform if HAS_LIBRARY else "any"


setup(distclass=PlatformDistribution, cmdclass={"bdist_wheel": PlatformWheel}, data_files=TOOL)
