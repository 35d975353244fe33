"""Makes the wheel: CMake builds the module and the texture pack, everything beside is copied.

The environment variable LUMORA_BUILD names a build to take them from; otherwise ../build/wheel
becomes one, and is built on the next time.
"""

import os
import pathlib
import re
import shutil
import subprocess

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent.parent
SCRATCH = ROOT / "build" / "wheel"
VERSION = re.search(r"^project\(.* VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text(), re.M)[1]


def build_with_cmake():
    """The folder of the build."""
    given = os.environ.get("LUMORA_BUILD")
    build = pathlib.Path(given) if given else SCRATCH / "cmake"
    if not given:
        parts = [f"-DLUMORA_BUILD_{part}=OFF" for part in ("TOOL", "TESTS", "BENCHMARKS", "FUZZERS")]
        subprocess.run(["cmake", "-S", ROOT, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
                        "-DLUMORA_BUILD_PYTHON=ON", *parts], check=True)
    jobs = str(os.cpu_count() or 1)
    subprocess.run(["cmake", "--build", build, "-j", jobs, "--target", "lumora_python"], check=True)
    return build


class BuildPackage(build_ext):
    """The whole package, links followed."""

    def run(self):
        package = pathlib.Path(self.build_lib).resolve() / "lumora"
        shutil.rmtree(package, ignore_errors=True)
        shutil.copytree(build_with_cmake() / "python" / "lumora", package,
                        ignore=shutil.ignore_patterns("__pycache__"))
        shutil.copy(ROOT / "LICENSE", package)

    def get_outputs(self):
        return [str(path) for path in (pathlib.Path(self.build_lib) / "lumora").rglob("*")
                if path.is_file()]


SCRATCH.mkdir(parents=True, exist_ok=True)
setup(
    version=VERSION,
    packages=[],
    ext_modules=[Extension("lumora._core", [], py_limited_api=True)],
    cmdclass={"build_ext": BuildPackage},
    options={
        "bdist_wheel": {"py_limited_api": "cp311"},
        "build": {"build_base": str(SCRATCH)},
        "egg_info": {"egg_base": str(SCRATCH)},
    },
    zip_safe=False,
)
