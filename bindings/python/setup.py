"""The wheel of the package: CMake builds the module of the project two folders up."""

import os

from skbuild import setup

setup(
    name="vek0",
    version="0.1.0",
    description="Drawings in Python: read and write DXF, query, edit with undo, draw",
    python_requires=">=3.9",
    install_requires=["numpy"],
    packages=["vek0"],
    package_data={"vek0": ["py.typed", "*.pyi", "_core/*.pyi"]},
    cmake_source_dir="../..",
    cmake_args=[
        "-DVEK0_BUILD_PYTHON=ON",
        "-DVEK0_BUILD_TESTS=OFF",
        "-DVEK0_BUILD_WEB=OFF",
        "-DVEK0_INSTALL=OFF",
        "-DVEK0_WERROR=OFF",
        f"-DCMAKE_CXX_FLAGS_RELEASE={os.environ.get('VEK0_OPTIMIZE', '-O2')} -DNDEBUG",
    ],
    zip_safe=False,
)
