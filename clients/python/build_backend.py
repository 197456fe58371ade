"""Builds the package with nothing but the standard library (PEP 517 and PEP 660), so that pip needs no network."""
import base64
import hashlib
import io
import re
import tarfile
import zipfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
PROJECT = dict(re.findall(r'^(name|version|description|requires-python) = "(.*)"$', (HERE / "pyproject.toml").read_text(), re.M))
STEM = f"{PROJECT['name']}-{PROJECT['version']}"
METADATA = (f"Metadata-Version: 2.1\nName: {PROJECT['name']}\nVersion: {PROJECT['version']}\n"
            f"Summary: {PROJECT['description']}\nRequires-Python: {PROJECT['requires-python']}\n")
WHEEL = "Wheel-Version: 1.0\nGenerator: build_backend\nRoot-Is-Purelib: true\nTag: py3-none-any\n"


def _package_files():
    for path in sorted((HERE / "tavrix").rglob("*")):
        if path.suffix in (".py", ".pyi") or path.name == "py.typed":
            yield path.relative_to(HERE).as_posix(), path.read_bytes()


def _wheel(folder, files):
    info = f"{STEM}.dist-info"
    files = [*files, (f"{info}/METADATA", METADATA.encode()), (f"{info}/WHEEL", WHEEL.encode())]
    record = "".join(f"{name},sha256={base64.urlsafe_b64encode(hashlib.sha256(data).digest()).decode().rstrip('=')},{len(data)}\n"
                     for name, data in files) + f"{info}/RECORD,,\n"
    name = f"{STEM}-py3-none-any.whl"
    with zipfile.ZipFile(Path(folder) / name, "w", zipfile.ZIP_DEFLATED) as wheel:
        for path, data in [*files, (f"{info}/RECORD", record.encode())]:
            wheel.writestr(zipfile.ZipInfo(path, (2020, 1, 1, 0, 0, 0)), data, zipfile.ZIP_DEFLATED)
    return name


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    return _wheel(wheel_directory, _package_files())


def build_editable(wheel_directory, config_settings=None, metadata_directory=None):
    return _wheel(wheel_directory, [("tavrix.pth", f"{HERE}\n".encode())])


def build_sdist(sdist_directory, config_settings=None):
    name = f"{STEM}.tar.gz"
    own = [(path, (HERE / path).read_bytes()) for path in ("pyproject.toml", "build_backend.py")]
    with tarfile.open(Path(sdist_directory) / name, "w:gz") as archive:
        for path, data in [*own, *_package_files(), ("PKG-INFO", METADATA.encode())]:
            entry = tarfile.TarInfo(f"{STEM}/{path}")
            entry.size = len(data)
            archive.addfile(entry, io.BytesIO(data))
    return name
