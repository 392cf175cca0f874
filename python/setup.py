"""Builds the wheel of a platform; see scripts/package-wheel.

The environment has TRVFILES_WHEEL_PLATFORM, the tag of the platform, and TRVFILES_WHEEL_VERSION.
The library is already beside the package's modules.
"""

import os

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel


class PlatformDistribution(Distribution):
    """Has a library, and so belongs to a platform."""

    def has_ext_modules(self):
        return True


class PlatformWheel(bdist_wheel):
    """A wheel for any Python on one platform."""

    def get_tag(self):
        return "py3", "none", os.environ["TRVFILES_WHEEL_PLATFORM"]


setup(
    name="trvfiles",
    version=os.environ["TRVFILES_WHEEL_VERSION"],
    description="File input and output of a machining workstation",
    packages=["trvfiles"],
    package_data={"trvfiles": ["py.typed", "*.so.0", "*.dll"]},
    python_requires=">=3.9",
    distclass=PlatformDistribution,
    cmdclass={"bdist_wheel": PlatformWheel},
)
