"""Matrices, axes, machine contexts and exceptions: plain values."""

import copy
import math
import pickle

import pytest

import trvfiles
from trvfiles import Axis, MachineContext, Matrix

SHIFT = Matrix([(1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (5, 6, 7, 1)])
TURN = Matrix([(0, 1, 0, 0), (-1, 0, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1)])


def copies(value):
    return [copy.copy(value), copy.deepcopy(value), pickle.loads(pickle.dumps(value))]


def test_a_matrix_is_four_nested_tuples():
    assert SHIFT == ((1.0, 0.0, 0.0, 0.0), (0.0, 1.0, 0.0, 0.0), (0.0, 0.0, 1.0, 0.0),
                     (5.0, 6.0, 7.0, 1.0))
    assert SHIFT.translation == (5.0, 6.0, 7.0)
    assert TURN.orientation == ((0.0, 1.0, 0.0), (-1.0, 0.0, 0.0), (0.0, 0.0, 1.0))
    assert Matrix() == ((1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1))
    assert all(type(one) is Matrix and one == SHIFT for one in copies(SHIFT))
    assert repr(Matrix()).startswith("Matrix(((1.0, 0.0, 0.0, 0.0), (0.0,")


def test_local_times_parent_is_the_placement_in_the_world():
    # Row vectors: the shift is turned by the parent, (5, 6) to (-6, 5).
    assert (SHIFT @ TURN).translation == (-6.0, 5.0, 7.0)
    assert (TURN @ SHIFT).translation == (5.0, 6.0, 7.0)
    with pytest.raises(TypeError):
        SHIFT @ ((1, 0), (0, 1))


@pytest.mark.parametrize("rows", [[(1, 0, 0, 0)] * 3, [(1, 0, 0)] * 4])
def test_a_matrix_has_sixteen_numbers(rows):
    with pytest.raises(ValueError):
        Matrix(rows)


def test_a_matrix_becomes_an_array():
    numpy = pytest.importorskip("numpy")
    array = numpy.asarray(SHIFT)
    assert array.shape == (4, 4)
    assert array.dtype == numpy.float64
    assert array[3].tolist() == [5.0, 6.0, 7.0, 1.0]
    assert numpy.array_equal(array @ numpy.asarray(TURN), numpy.asarray(SHIFT @ TURN))
    assert numpy.asarray(SHIFT, dtype="float32").dtype == numpy.float32
    assert Matrix(array) == SHIFT


def test_an_axis_file_is_read(project):
    axis = trvfiles.read_axis(project / "table-a30.dat")
    assert axis.tags == (2, 0, 54)
    assert axis.matrix.translation == (12.5, -40.0, 215.75)
    # The inverse of the block in the file: -30 degrees there, 30 degrees here.
    assert axis.matrix[1] == pytest.approx((0, math.cos(math.pi / 6), 0.5, 0), abs=1e-6)
    assert all(one == axis for one in copies(axis))


def test_an_axis_file_is_written(project, tmp_path):
    axis = trvfiles.read_axis(project / "table-a30.dat")
    axis.write(tmp_path / "copy.dat")
    assert (tmp_path / "copy.dat").read_bytes() == axis.to_bytes()
    assert trvfiles.read_axis(tmp_path / "copy.dat").tags == (2, 0, 54)
    assert Axis.from_bytes(Axis(SHIFT).to_bytes()) == Axis(SHIFT, ())


@pytest.mark.parametrize("tags", [(1, 2, 3, 4), (-1, 0, 0), (0, 2**31, 0), (1.5, 0, 0)])
def test_wrong_tags_are_rejected(tags):
    with pytest.raises(ValueError):
        Axis(tags=tags)


def test_one_tag_is_not_written():
    with pytest.raises(ValueError) as caught:
        Axis(tags=(1,)).to_bytes()
    assert str(caught.value) == "an axis file is written with 0 or 3 tags, not 1"


def test_an_axis_has_no_other_field():
    with pytest.raises(AttributeError):
        Axis().tag = 3


def test_an_axis_fault_has_its_line(tmp_path):
    (tmp_path / "a.dat").write_text("1\n1 0 0 0\n0 1 x 0\n")
    with pytest.raises(trvfiles.ContentError) as caught:
        trvfiles.read_axis(tmp_path / "a.dat")
    assert caught.value.line > 0
    with pytest.raises(trvfiles.MissingFileError):
        trvfiles.read_axis(tmp_path / "b.dat")


def test_a_machine_context_is_read(project):
    context = trvfiles.read_machine_context(project / "bracket-left.mctx")
    assert context == MachineContext(
        name="bracket-left", comment="Operation 10 in the left vise",
        machine_name="pallet-mill.mac",
        machine_position="[stockposition@bracket-left]left-vise.ref",
        surface_group="Top and slanted pocket", clamping_system="Vise 120, soft jaws",
        reference_axis="transfo.dat", origin_program=(-140, 20, 145), machine_proximity=10,
        clamping_proximity=2.5)
    assert context.notes == ()
    assert all(one == context for one in copies(context))


def test_a_machine_context_is_written(project, tmp_path):
    original = (project / "bracket-left.mctx").read_bytes()
    context = MachineContext.from_bytes(original)
    assert context.to_bytes() == original
    context.comment = "Zerspanung, größer"
    context.origin_program = [1, 2, 3]
    context.write(tmp_path / "a.mctx")
    read = trvfiles.read_machine_context(tmp_path / "a.mctx")
    assert (read.comment, read.origin_program) == ("Zerspanung, größer", (1.0, 2.0, 3.0))
    assert read == context


def test_a_default_context_is_null():
    assert MachineContext().is_null
    assert not MachineContext(clamping_proximity=0.1).is_null
    assert not MachineContext(surface_group="x").is_null


@pytest.mark.parametrize("field, value, error, text", [
    ("name", 3, TypeError, "name has to be a str, not int"),
    ("comment", "a\0", ValueError, "comment contains a null character"),
    ("origin_program", (1, 2), ValueError, "origin_program has to be 3 numbers, not 2"),
    ("proximity", 1, AttributeError, "a machine context has no field 'proximity'"),
])
def test_a_wrong_field_is_rejected(field, value, error, text):
    with pytest.raises(error) as caught:
        setattr(MachineContext(), field, value)
    assert str(caught.value) == text


def test_a_context_without_a_machine_name_is_a_content_error(tmp_path):
    (tmp_path / "a.mctx").write_text("[header]\nversion=2\n[machine]\nposition=x\n")
    with pytest.raises(trvfiles.ContentError) as caught:
        trvfiles.read_machine_context(tmp_path / "a.mctx")
    assert caught.value.file == str(tmp_path / "a.mctx")
    with pytest.raises(trvfiles.FileError):
        trvfiles.read_machine_context(tmp_path)


def test_a_context_is_not_written_into_a_missing_directory(tmp_path):
    with pytest.raises(trvfiles.Error) as caught:
        MachineContext().write(tmp_path / "none" / "a.mctx")
    assert str(tmp_path / "none" / "a.mctx") in str(caught.value)


def test_every_exception_is_pickled_with_its_values(project):
    with pytest.raises(trvfiles.MissingFileError) as caught:
        trvfiles.read_axis(project / "none.dat")
    error = pickle.loads(pickle.dumps(caught.value))
    assert type(error) is trvfiles.MissingFileError
    assert str(error) == str(caught.value)
    assert (error.status, error.file, error.errno) == (2, str(project / "none.dat"), 2)
    assert repr(error) == f"MissingFileError(Status.OPEN_ERROR, {str(error)!r})"


def test_every_status_has_an_exception():
    from trvfiles.errors import error_class
    expected = {
        "OPEN_ERROR": OSError, "SHORT_WRITE": OSError, "CONTENT_ERROR": ValueError,
        "STRUCTURE_ERROR": ValueError, "BAD_TEXT": ValueError, "OUT_OF_MEMORY": MemoryError,
        "FATAL_REPORT": trvfiles.ConfigurationError, "UNDEFINED": KeyError,
        "NOT_FOUND": LookupError, "SYNTAX_ERROR": ValueError, "NAME_TOO_LONG": ValueError,
        "BUFFER_TOO_SMALL": ValueError, "NO_FILE_NAME": ValueError,
    }
    for status in trvfiles.Status:
        kind = error_class(status, 0)
        assert issubclass(kind, trvfiles.Error)
        assert issubclass(kind, expected.get(status.name, trvfiles.Error))
        assert str(kind(status, "why", "f", 3, 4)) == "f:3:4: why"


def test_the_version_is_that_of_the_library():
    assert trvfiles.__version__ == trvfiles.library_version()
    assert trvfiles.__version__.count(".") == 2
