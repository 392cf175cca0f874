"""Several threads at the same time."""

import sys
import threading
import time
from concurrent.futures import ThreadPoolExecutor

import trvfiles


def many_components():
    leaves = [trvfiles.Component(f"Part {i}", "p.stl", translation=(i, 0, 0))
              for i in range(4000)]
    return trvfiles.Assembly(trvfiles.Component("Root", children=leaves))


def test_threads_read_at_the_same_time(project):
    (project / "large.xml").write_bytes(many_components().to_bytes())
    expected = [2000, 19, 54, "bracket-left"]

    def read(number):
        large = trvfiles.read_assembly(project / "large.xml")
        return [large.placements()[2000].translation[0],
                len(trvfiles.read_assembly(project / "bracket.xml")),
                trvfiles.read_axis(project / "table-a30.dat").tags[2],
                trvfiles.read_machine_context(project / "bracket-left.mctx").name]

    with ThreadPoolExecutor(8) as pool:
        assert list(pool.map(read, range(16))) == [expected] * 16


def test_threads_get_the_faults_of_their_own_calls(tmp_path):
    def fail(number):
        lines = b"<ComponentInfo>" + b"\n" * number + b"<"
        try:
            trvfiles.Assembly.from_bytes(lines)
        except trvfiles.ContentError as error:
            return error.line
    with ThreadPoolExecutor(8) as pool:
        assert list(pool.map(fail, range(400))) == list(range(1, 401))


def test_threads_write_contexts_and_use_the_runtime(tmp_path):
    def write(number):
        context = trvfiles.MachineContext(name=f"context {number}")
        context.write(tmp_path / f"{number}.mctx")
        return trvfiles.default_context(["[MACHINE_POSITION_3].mctx"]).position

    with ThreadPoolExecutor(8) as pool:
        assert set(pool.map(write, range(100))) == {3}
    for number in range(100):
        assert trvfiles.read_machine_context(tmp_path / f"{number}.mctx").name == (
            f"context {number}")


def test_reading_releases_the_gil(project):
    """Another thread runs Python while the library reads.

    With an interval of switches that never ends, that thread gets the GIL only from a call that
    releases it.
    """
    (project / "large.xml").write_bytes(many_components().to_bytes())
    interval = sys.getswitchinterval()
    counted, finished = [0], threading.Event()

    def count():
        while not finished.is_set():
            counted[0] += 1
            time.sleep(0.0001)

    from trvfiles._interface import call, created
    with created("assembly_create") as handle:
        thread = threading.Thread(target=count)
        sys.setswitchinterval(1000)
        try:
            thread.start()
            before = counted[0]
            for _ in range(10):
                call("assembly_read", handle, bytes(project / "large.xml"))
            after = counted[0]
        finally:
            finished.set()
            sys.setswitchinterval(interval)
            thread.join()
    assert after > before
