"""What concerns the whole process: outputs, threads, memory, ends."""

import os
import sys
import threading
import time

import numpy
import pytest

import lumora
from conftest import noise

instrumented = pytest.mark.skipif("LD_PRELOAD" in os.environ,
                                  reason="a sanitizer keeps memory of its own")


def test_nothing_is_printed(run_python):
    said = run_python("""
import lumora
frame = bytearray(4 * 100 * 100)
for look in lumora.looks.values():
    settings = {"colour": "#ff0000"} if "colour" in look.settings else {}
    for format in look.formats:
        with lumora.Filter(look, size=(100, 100), format=format, **settings) as filter:
            filter(frame[:40000 if format == "rgba" else 15000])
    for resources in "/nowhere", "/dev":
        try:
            lumora.apply(memoryview(frame).cast("B", (100, 100, 4)), look, resources=resources,
                         **settings)
        except OSError:
            pass
        else:
            raise SystemExit("there are resources in " + resources)
""")
    assert said == ""


def test_neither_numpy_nor_pillow_is_imported(run_python):
    assert run_python("""
import sys
class Absent:
    def find_spec(self, name, path=None, target=None):
        if name.split(".")[0] in ("numpy", "PIL"):
            raise ImportError(name)
sys.meta_path.insert(0, Absent())
import lumora
picture = lumora.apply(memoryview(bytes(30000)).cast("B", (100, 100, 3)), "xpro2")
print(picture.shape, len(set(picture.tobytes())) > 1)
""") == "(100, 100, 3) True\n"


def test_other_threads_run_meanwhile():
    picture = noise(1600, 1600)
    counts, done = [], threading.Event()

    def count():
        while not done.is_set():
            counts.append(None)
            time.sleep(0.0001)

    counter = threading.Thread(target=count)
    counter.start()
    try:
        longest = 0
        for _ in range(5):
            before = len(counts)
            lumora.apply(picture, "meishimenghuan", out=picture, single_thread=True)
            longest = max(longest, len(counts) - before)
    finally:
        done.set()
        counter.join()
    assert longest >= 3


def test_threads_share_filters_and_kept_sessions():
    frames = [noise(120, 160, seed=i) for i in range(8)]
    looks = ["xpro2", "fugu", "hudson", "mosaic"]
    expected = [lumora.apply(frame, look) for frame in frames for look in looks]
    shared = [lumora.Filter(look, size=(160, 120)) for look in looks]
    faults = []

    def work(turn):
        for step in range(40):
            case = (turn * 7 + step) % len(expected)
            frame, look = frames[case // len(looks)].copy(), case % len(looks)
            if step % 2:
                shared[look](frame)
            else:
                lumora.apply(frame, looks[look], out=frame)
            if not (frame == expected[case]).all():
                faults.append((turn, step))

    threads = [threading.Thread(target=work, args=(turn,)) for turn in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not faults


def test_a_filter_may_be_closed_while_others_use_it():
    filter = lumora.Filter("xpro2", size=(1000, 1000))
    refused = []

    def work():
        frame = noise(1000, 1000)
        try:
            for _ in range(1000):
                filter(frame)
        except ValueError as error:
            refused.append(str(error))

    threads = [threading.Thread(target=work) for _ in range(3)]
    for thread in threads:
        thread.start()
    time.sleep(0.05)
    filter.close()
    for thread in threads:
        thread.join()
    assert refused == ["the filter is closed"] * 3


def test_a_frame_cannot_be_resized_while_it_is_filtered():
    frame, refused = bytearray(4 * 2000 * 2000), []
    with lumora.Filter("meishimenghuan", size=(2000, 2000), single_thread=True) as filter:
        thread = threading.Thread(target=lambda: [filter(frame) for _ in range(20)])
        thread.start()
        while thread.is_alive():
            try:
                frame.append(0)
                frame.pop()
            except BufferError:
                refused.append(None)
            time.sleep(0.001)
        thread.join()
    assert refused


def test_a_daemon_thread_at_the_end_of_the_interpreter(run_python):
    for _ in range(5):
        assert run_python("""
import threading, time, lumora
class LongEnd:
    def __del__(self, sleep=time.sleep):
        sleep(0.1)
end = LongEnd()
def work():
    with lumora.Filter("xpro2", size=(100, 100), single_thread=True) as filter:
        frame = bytearray(4 * 100 * 100)
        picture = memoryview(frame).cast("B", (100, 100, 4))
        while True:
            filter(frame)
            lumora.apply(picture, "fugu", single_thread=True)
for _ in range(3):
    threading.Thread(target=work, daemon=True).start()
time.sleep(0.1)
""") == ""


def test_forked_processes_filter_like_their_parent(run_python):
    assert run_python("""
import multiprocessing, lumora
picture = memoryview(bytes(range(250)) * 160).cast("B", (100, 100, 4))
def work(look):
    return lumora.apply(picture, look).tobytes()
if __name__ == "__main__":
    looks = ["xpro2", "fugu", "hudson", "lofi"] * 3
    expected = [work(look) for look in looks]
    with multiprocessing.get_context("fork").Pool(3) as pool:
        print(pool.map(work, looks) == expected)
""") == "True\n"


def test_an_interrupt_ends_a_loop(run_python):
    assert run_python("""
import os, signal, threading, time, lumora
frame = bytearray(4 * 500 * 500)
threading.Timer(0.3, os.kill, (os.getpid(), signal.SIGINT)).start()
try:
    with lumora.Filter("meishimenghuan", size=(500, 500)) as filter:
        while True:
            filter(frame)
except KeyboardInterrupt:
    print("interrupted", end="")
""") == "interrupted"


@instrumented
def test_exhausted_memory_raises(run_python):
    assert run_python("""
import resource, lumora
picture = memoryview(bytearray(4 * 4000 * 4000)).cast("B", (4000, 4000, 4))
lumora.apply(memoryview(bytes(40000)).cast("B", (100, 100, 4)), "fugu")
with open("/proc/self/statm") as file:
    used = int(file.read().split()[0]) * resource.getpagesize()
resource.setrlimit(resource.RLIMIT_AS, (used + 30_000_000, resource.RLIM_INFINITY))
for work in (lambda: lumora.apply(picture, "fugu"),
             lambda: lumora.apply(picture, "fugu", strength=3, out=picture, single_thread=True),
             lambda: lumora.apply(picture, "xpro2", out=picture, single_thread=True),
             lambda: lumora.apply(picture, "blur", out=picture, single_thread=True),
             lambda: lumora.Filter("xpro2", size=(4000, 4000))):
    try:
        work()
        print("nothing raised")
    except MemoryError:
        print("MemoryError")
lumora.apply(memoryview(bytes(40000)).cast("B", (100, 100, 4)), "fugu", single_thread=True)
""") == "MemoryError\n" * 5


@instrumented
def test_a_hundred_thousand_calls_and_errors_do_not_grow_the_process():
    frame, array = bytearray(4 * 88 * 88), noise(88, 88)
    mask = numpy.ones((88, 88), bool)

    def refused(call):
        try:
            call()
        except (ValueError, TypeError, OSError):
            return
        raise AssertionError("nothing raised")

    def rounds(count):
        for _ in range(count):
            filter(frame)
            filter(frame, strength=3)
            lumora.apply(array, "xpro2", single_thread=True)
            lumora.apply(array, "colour-fix", single_thread=True, pick=(5, 5), mask=mask)
            lumora.apply(array[..., :3], "mosaic", single_thread=True, rect=(0, 0, 20, 20))
            refused(lambda: filter(frame, rect=1))
            refused(lambda: lumora.apply(array[:, ::-1], "fugu", out=array[:, ::-1]))
            refused(lambda: lumora.apply(array, "fugu", strength=40))
            refused(lambda: lumora.apply(array, "xpro2", resources="/nowhere"))
            refused(lambda: lumora.apply(3, "mosaic", rect=(1, 2, "x", 4)))

    def resident():
        with open("/proc/self/statm") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    def references():
        """How many objects there are, and references to those that calls are given."""
        given = (None, True, 3, array, frame, mask, filter, lumora._apply.RESOURCES)
        return sys.getallocatedblocks() + sum(map(sys.getrefcount, given))

    with lumora.Filter("fugu", size=(88, 88), single_thread=True) as filter:
        rounds(1000)
        before, objects = resident(), references()
        rounds(10_000)
        assert references() - objects < 1000
        # Two bytes a call would be more.
        assert resident() - before < 200_000


@instrumented
def test_filters_that_come_and_go_do_not_grow_the_process():
    def rounds(count):
        for i in range(count):
            with lumora.Filter("hudson", size=(88 + i % 7, 88)) as filter:
                filter(bytearray(4 * (88 + i % 7) * 88))
            lumora.apply(noise(88, 88 + i % 13), "lianghong", direction=i % 4)

    def resident():
        with open("/proc/self/statm") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    rounds(60)
    before = resident()
    rounds(200)
    # A lost session of the smallest size is 110 kB.
    assert resident() - before < 2_000_000
