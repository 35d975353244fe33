"""The wheel, as a stranger installs it."""

import os
import pathlib
import subprocess
import sys
import venv

import pytest

PROJECT = pathlib.Path(__file__).resolve().parent.parent


@pytest.fixture(scope="module")
def wheel(tmp_path_factory):
    """Made by the standard backend, from the build that LUMORA_BUILD names."""
    folder = tmp_path_factory.mktemp("wheel")
    program = "import sys; from setuptools import build_meta; build_meta.build_wheel(sys.argv[1])"
    subprocess.run([sys.executable, "-c", program, folder], cwd=PROJECT, check=True)
    wheel, = folder.iterdir()
    return wheel


def run(*command, **environment):
    clean = {key: value for key, value in os.environ.items() if not key.startswith("PYTHON")}
    return subprocess.run(list(map(str, command)), check=True, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, env=clean | environment).stdout


def test_one_wheel_serves_all_versions_of_the_interpreter(wheel):
    assert wheel.name.startswith("lumora_filters-") and "-cp311-abi3-linux_" in wheel.name


def test_it_works_in_an_environment_of_its_own(wheel, tmp_path):
    venv.create(tmp_path / "env", with_pip=True)
    python = tmp_path / "env" / "bin" / "python"
    run(python, "-m", "pip", "install", "--no-index", "--no-deps", wheel)
    said = run(python, "-c", """
import lumora
picture = lumora.apply(memoryview(bytes(40000)).cast("B", (100, 100, 4)), "xpro2")
print(lumora.__version__, lumora.__file__, len(set(picture.tobytes())) > 1)
""")
    assert str(tmp_path / "env") in said and said.endswith("True\n")

    # The same one opened to the system's packages, numpy and Pillow among them.
    venv.create(tmp_path / "env", system_site_packages=True)
    tests = [PROJECT / "tests" / f"test_{name}.py" for name in ("arrays", "pillow")]
    said = run(python, "-m", "pytest", "-q", "-p", "no:cacheprovider", *tests,
               PYTHONDONTWRITEBYTECODE="1")
    assert " passed" in said
    run(python, "-m", "pip", "uninstall", "--yes", "lumora-filters")
    assert not list(tmp_path.rglob("*lumora*"))
