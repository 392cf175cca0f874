"""What all tests of the package share."""

import ctypes
import os
import pathlib
import shutil
import subprocess
import sys

import pytest

REPOSITORY = pathlib.Path(__file__).resolve().parent.parent.parent


@pytest.fixture
def project(tmp_path):
    """A copy of the sample project."""
    return shutil.copytree(REPOSITORY / "examples/sample-project/project", tmp_path / "project")


@pytest.fixture
def repository():
    return REPOSITORY


def live_handles():
    from trvfiles._interface import call
    count = ctypes.c_size_t()
    call("live_handles", ctypes.byref(count))
    # The fault of this call is one of them.
    return count.value


@pytest.fixture(autouse=True)
def no_handle_is_left():
    """Every operation releases its handles, also one that fails."""
    before = live_handles()
    yield
    assert live_handles() == before


@pytest.fixture
def run_python(tmp_path):
    """Runs lines in a process of their own, and returns what they print."""
    def run(lines, **variables):
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("TRVHOME", "TRVHOME_LS", "ENVPATH", "CFGPATH")}
        completed = subprocess.run([sys.executable, "-c", lines], cwd=tmp_path, text=True,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   env={**environment, **variables}, check=False)
        return completed.stdout
    return run
