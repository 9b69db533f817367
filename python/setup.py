"""The version is the project's, which CMakeLists.txt tells."""
import pathlib
import re

from setuptools import setup

_PROJECT = pathlib.Path(__file__).resolve().parents[1] / "CMakeLists.txt"
setup(version=re.search(r"^project\(sxml VERSION ([0-9.]+)", _PROJECT.read_text(), re.MULTILINE).group(1))
