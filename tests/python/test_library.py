"""Finding the library. These are also the tests for Windows, on which no other test runs."""

import ntpath
import os

import pytest

from trvfiles import _library


def test_the_variable_names_the_library():
    found = _library.candidates({"TRVFILES_LIBRARY": "/opt/x/own.so"}, "/nowhere", "linux")
    assert found == [os.path.abspath("/opt/x/own.so")]


def test_a_relative_name_in_the_variable_is_made_absolute(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    found = _library.candidates({"TRVFILES_LIBRARY": "own.so"}, "/nowhere", "linux")
    assert found == [str(tmp_path / "own.so")]


@pytest.mark.parametrize("platform, name", [
    ("linux", "libtrvfiles.so.0"), ("linux", "libtrvfiles.so"), ("win32", "trvfiles.dll"),
    ("darwin", "libtrvfiles.0.dylib")])
def test_a_library_beside_the_package_is_found_by_its_full_path(tmp_path, platform, name):
    (tmp_path / name).write_bytes(b"")
    assert _library.candidates({}, str(tmp_path), platform) == [str(tmp_path / name)]


def test_an_empty_variable_is_ignored(tmp_path):
    (tmp_path / "trvfiles.dll").write_bytes(b"")
    found = _library.candidates({"TRVFILES_LIBRARY": ""}, str(tmp_path), "win32")
    assert found == [str(tmp_path / "trvfiles.dll")]


@pytest.mark.parametrize("platform, names", [
    ("linux", ["libtrvfiles.so.0", "libtrvfiles.so"]), ("win32", ["trvfiles.dll"])])
def test_otherwise_the_loader_of_the_system_searches(tmp_path, platform, names):
    assert _library.candidates({}, str(tmp_path), platform) == names
    assert not any(ntpath.dirname(name) for name in names)


def test_the_error_names_each_library_that_does_not_load(tmp_path):
    (tmp_path / "no-library").write_bytes(b"text")
    with pytest.raises(ImportError) as caught:
        _library.load([str(tmp_path / "missing"), str(tmp_path / "no-library")])
    assert str(tmp_path / "missing") in str(caught.value)
    assert str(tmp_path / "no-library") in str(caught.value)
    assert "TRVFILES_LIBRARY" in str(caught.value)


def test_another_library_is_rejected_with_the_function_that_it_lacks(run_python):
    printed = run_python("import trvfiles", TRVFILES_LIBRARY=_any_other_library())
    assert printed.splitlines()[-1].startswith("ImportError: ")
    assert "has no trvfiles_release" in printed


def _any_other_library():
    import _ctypes
    return _ctypes.__file__
