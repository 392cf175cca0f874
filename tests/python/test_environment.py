"""The runtime. The process of these tests loads one installation."""

import copy
import os
import pathlib
import pickle
import shutil
import sys

import pytest

import trvfiles
from conftest import REPOSITORY
from trvfiles import Environment

ABSENT = ("TRVHOME", "TRVHOME_LS", "ENVPATH", "CFGPATH", "TXTPATH", "SPINDLE_LIMIT", "SHOP_SHIFT")


@pytest.fixture(scope="module")
def installation(tmp_path_factory):
    return shutil.copytree(REPOSITORY / "examples/sample-project/installation",
                           tmp_path_factory.mktemp("shop") / "installation")


@pytest.fixture(scope="module")
def env(installation):
    for name in ABSENT:
        os.environ.pop(name, None)
    return Environment(installation)


def test_a_variable_has_the_value_of_the_configuration(env):
    assert env["SPINDLE_LIMIT"] == "9000"
    assert env["spindle_limit"] == "9000"
    assert env["$SITE"] == "Erlbach"
    assert env["?CFG"] == "?ENV"


def test_the_process_environment_has_precedence(env, monkeypatch):
    monkeypatch.setenv("SPINDLE_LIMIT", "4000")
    assert env["SPINDLE_LIMIT"] == "4000"
    explained = env.explain("SPINDLE_LIMIT")
    assert (explained.value, explained.origin) == ("4000", "from environment")
    assert len(explained.definitions) == 3


def test_it_is_a_mapping(env):
    assert "SPINDLE_LIMIT" in env
    assert "NOBODY" not in env
    assert 5 not in env
    assert env.get("NOBODY") is None
    assert env.get("NOBODY", "x") == "x"
    assert dict(env)["COMPANY"] == "Hollmann Precision Parts"
    assert len(env) == len(list(env))


def test_an_undefined_variable_is_a_key_error_with_a_suggestion(env):
    with pytest.raises(KeyError) as caught:
        env["SPINDEL_LIMIT"]
    assert isinstance(caught.value, trvfiles.UndefinedError)
    assert str(caught.value) == (
        "the variable 'SPINDEL_LIMIT' is not defined; the nearest is 'SPINDLE_LIMIT'")
    with pytest.raises(KeyError) as caught:
        env["?NOBODY"]
    assert str(caught.value) == "the path list 'NOBODY' is not defined"


def test_an_explanation_has_all_definitions(env, installation):
    explained = env.explain("SPINDLE_LIMIT")
    assert (explained.name, explained.value) == ("SPINDLE_LIMIT", "9000")
    assert [d.text for d in explained.definitions] == [
        "SPINDLE_LIMIT = 9000", "SPINDLE_LIMIT = 10000", "SPINDLE_LIMIT = 12000"]
    assert [d.line for d in explained.definitions] == [5, 7, 20]
    assert explained.definitions[2].file == str(installation / "config" / "environ.cfg")
    assert explained.origin == f"from '{installation / 'cell' / 'environ.cfg'}' line 5"
    with pytest.raises(KeyError):
        env.explain("NOBODY")


def test_references_are_expanded(env, installation):
    assert env.expand("$LABEL, ${UNITS}") == "Erlbach #3, mm"
    assert env.expand_path("$TRVHOME/tmp") == pathlib.Path(installation / "tmp")


def test_an_expansion_that_fails_names_the_text(env):
    with pytest.raises(trvfiles.UndefinedError) as caught:
        env.expand("a $NOBODY b")
    assert str(caught.value) == "'a $NOBODY b': a variable is not defined"
    with pytest.raises(trvfiles.ExpansionError) as caught:
        env.expand("${UNITS")
    assert str(caught.value) == "'${UNITS': a name in brackets has no closing bracket"


@pytest.mark.parametrize("name", ["?CFG\\shop.cfg", "?CFG/shop.cfg"])
def test_a_file_is_found_in_the_first_directory_that_has_it(env, installation, name):
    found = env.find(name)
    assert found == installation / "site" / "shop.cfg"
    assert found.read_bytes() == (installation / "site" / "shop.cfg").read_bytes()


def test_a_file_that_is_not_found_is_an_error(env):
    with pytest.raises(trvfiles.NotFoundError) as caught:
        env.find("?CFG/none.cfg")
    assert str(caught.value) == "?CFG/none.cfg: the file, section or entry does not exist"
    with pytest.raises(trvfiles.UndefinedError):
        env.find("?NOBODY/shop.cfg")


def test_a_process_has_one_configuration(env, installation, tmp_path):
    assert Environment(installation) == env
    assert Environment() == env
    assert env.root == installation
    with pytest.raises(ValueError) as caught:
        Environment(tmp_path)
    assert str(caught.value) == (f"the process has loaded the configuration of {installation}: "
                                 f"that of {tmp_path} needs another process")
    assert os.environ["TRVHOME"] == str(installation)


def test_copies_are_the_same_environment(env):
    for one in (copy.copy(env), copy.deepcopy(env), pickle.loads(pickle.dumps(env))):
        assert one == env
        assert one["SPINDLE_LIMIT"] == "9000"
    assert len({env, copy.copy(env)}) == 1
    assert repr(env) == f"Environment({str(env.root)!r})"


@pytest.mark.parametrize("name, error", [(5, TypeError), ("A\0", ValueError)])
def test_a_wrong_name_is_rejected(env, name, error):
    with pytest.raises(error):
        env[name]


def test_a_missing_configuration_may_be_corrected(run_python, installation, tmp_path):
    printed = run_python(f"""
import trvfiles
try:
    trvfiles.Environment("none")
except trvfiles.ConfigurationError as error:
    print(error)
print(trvfiles.Environment({str(installation)!r})["SITE"])
""")
    missing = f"{tmp_path / 'none'}\\config\\environ.cfg"
    assert printed == f"Error loading '{missing}'\nErlbach\n"


def test_a_fault_in_the_configuration_is_no_end_of_the_process(run_python, tmp_path):
    (tmp_path / "config").mkdir()
    (tmp_path / "config/environ.cfg").write_text("[var]\nA = 1\n/endif\n")
    printed = run_python("""
import trvfiles
try:
    trvfiles.Environment(".")
except trvfiles.ConfigurationError as error:
    print("line 3" in str(error), error.status.name)
""")
    assert printed == "True FATAL_REPORT\n"


def test_without_a_root_the_variable_of_the_process_counts(run_python, installation):
    printed = run_python("import trvfiles; print(trvfiles.Environment().root)",
                         TRVHOME=str(installation))
    assert printed == f"{installation}\n"


def test_favourite_contexts_are_those_of_the_installation(env, installation):
    directory = installation / "standard" / "machine_context"
    assert pathlib.Path(trvfiles.context_directory()) == directory
    assert [pathlib.Path(path).relative_to(directory).as_posix()
            for path in trvfiles.favorite_contexts()] == [
                "five-axis/tilted-table/tilted-table.mctx", "pallet-mill/pallet-mill.mctx"]
    assert trvfiles.favorite_contexts(installation / "none") == []


def test_the_default_context_has_the_highest_position(env):
    names = ["a.mctx", "[MACHINE_POSITION_1].mctx", "[MACHINE_POSITION_2].mctx"]
    assert trvfiles.default_context(names) == ("[MACHINE_POSITION_2].mctx", 2)
    assert trvfiles.default_context(["a.mctx"]) is None
    assert trvfiles.default_context([]) is None


def test_contexts_are_created(env, tmp_path, monkeypatch):
    created = trvfiles.create_default_context(tmp_path, 1)
    assert created.context_file == "[MACHINE_POSITION_1].mctx"
    assert (tmp_path / created.reference_file).exists()
    monkeypatch.chdir(tmp_path)
    named = trvfiles.create_context(tmp_path, "mill.mac", context_file="own.mctx")
    assert trvfiles.read_machine_context(named.context_file).machine_name == "mill.mac"
    with pytest.raises(trvfiles.Error):
        trvfiles.create_context(tmp_path, "mill.mac", context_file="own.mctx")


def test_a_handler_receives_the_messages_of_its_channel(run_python, installation):
    printed = run_python(f"""
import gc, os, trvfiles
os.environ["TRV_TRVFILES_VERBOSE"] = "1"
lines = []
trvfiles.set_message_handler("trace", lines.append)
gc.collect()
env = trvfiles.Environment({str(installation)!r})
print(any("loading configuration file" in line for line in lines))
count = len(lines)
trvfiles.set_message_handler("trace", None)
env["SITE"]
print(len(lines) == count)
""")
    assert printed.splitlines()[-2:] == ["True", "True"]


def test_there_are_three_channels():
    with pytest.raises(ValueError) as caught:
        trvfiles.set_message_handler("warning", print)
    assert str(caught.value) == "there is no channel 'warning'; there are error, fatal, trace"


def test_an_exception_in_a_handler_is_unraisable(run_python, installation):
    printed = run_python(f"""
import os, sys, trvfiles
os.environ["TRV_TRVFILES_VERBOSE"] = "1"
caught = []
sys.unraisablehook = lambda problem: caught.append(type(problem.exc_value).__name__)
def fail(message):
    raise RuntimeError(message)
trvfiles.set_message_handler("trace", fail)
print(trvfiles.Environment({str(installation)!r})["SITE"])
print(set(caught))
""")
    assert printed == "Erlbach\n{'RuntimeError'}\n"


def test_paths_of_the_runtime_are_those_of_the_system():
    from trvfiles.environment import _native
    assert _native("a\\b/c") == ("a\\b/c" if sys.platform == "win32" else "a/b/c")
