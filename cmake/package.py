#!/usr/bin/env python3
"""Makes TAVRIX-VERSION.zip and its checksum from the builds linux, win32 and win64: package.py FOLDER. ./package
builds these before. The same commit gives the same bytes: names in order, the commit's time, fixed modes."""
import argparse
import hashlib
import os
import re
import stat
import subprocess
import sys
import time
import zipfile
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
STRIP = {"linux": "strip", "win32": "i686-w64-mingw32-strip", "win64": "x86_64-w64-mingw32-strip"}
COMPILER = {"linux": "g++", "win32": "i686-w64-mingw32-g++-posix", "win64": "x86_64-w64-mingw32-g++-posix"}
# Build -> the built file, its places in the archive, and what it contains beside our own code.
BINARIES = {
    "linux": [("plugin/lin.xpl", ["TAVRIX/64/lin.xpl"], ["gcc"]),
              ("bin/offsetctl", ["programs/linux/offsetctl"], ["gcc", "web"]),
              ("bin/standin", ["programs/linux/standin"], ["gcc"]),
              ("bin/XPLM_64.so", ["programs/linux/XPLM_64.so"], ["gcc"]),
              ("bin/XPWidgets_64.so", ["programs/linux/XPWidgets_64.so"], ["gcc", "zlib"])],
    "win32": [("plugin/win.xpl", ["TAVRIX/win.xpl", "TAVRIX/32/win.xpl"], ["gcc", "mingw-w64"]),
              ("bin/offsetctl.exe", ["programs/win32/offsetctl.exe"], ["gcc", "mingw-w64", "web"]),
              ("bin/standin.exe", ["programs/win32/standin.exe"], ["gcc", "mingw-w64"]),
              ("bin/XPLM.dll", ["programs/win32/XPLM.dll"], ["gcc", "mingw-w64"]),
              ("bin/XPWidgets.dll", ["programs/win32/XPWidgets.dll"], ["gcc", "mingw-w64", "zlib"])],
    "win64": [("plugin/win.xpl", ["TAVRIX/64/win.xpl"], ["gcc", "mingw-w64"]),
              ("bin/offsetctl.exe", ["programs/win64/offsetctl.exe"], ["gcc", "mingw-w64", "web"]),
              ("bin/standin.exe", ["programs/win64/standin.exe"], ["gcc", "mingw-w64"]),
              ("bin/XPLM_64.dll", ["programs/win64/XPLM_64.dll"], ["gcc", "mingw-w64"]),
              ("bin/XPWidgets_64.dll", ["programs/win64/XPWidgets_64.dll"], ["gcc", "mingw-w64", "zlib"])],
}
# What others wrote: what it is, and where its terms stand (@ is GCC's first number). Those of the compilers are their
# packages' own.
LICENCES = {
    "gcc": ("the run time of GCC and its C++ library: GPL 3 with the GCC Runtime Library Exception 3.1",
            Path("/usr/share/doc/gcc-@-base/copyright")),
    "mingw-w64": ("the Windows run time of MinGW-w64 and winpthreads: ZPL 2.1, MIT, BSD and public domain",
                  Path("/usr/share/doc/mingw-w64-common/copyright")),
    "zlib": ("compression of pictures: the zlib licence", Path("/usr/share/doc/zlib1g-dev/copyright")),
    "web": ("what the web pages of offsetctl are built with", TOP / "web" / "licences.txt"),
}
# What a program holds that has the web pages in it.
WEB_MARK = b"uPlot"
# A program that writes other files of the tree is of no use there.
LEFT_OUT = {"clients/generate.py"}


def fail(text):
    sys.exit(f"package: {text}")


def git(*words):
    ended = subprocess.run(["git", "-C", str(TOP), *words], capture_output=True, text=True)
    if ended.returncode:
        fail(f"needs the project's git checkout: {ended.stderr.strip()}")
    return ended.stdout


def version():
    found = re.search(r'pluginTitle\[\] = "TAVRIX Version ([\d.]+)"', (TOP / "src/base/version.h").read_text())
    return found[1] if found else fail("src/base/version.h does not tell the version")


def stripped(build, file, folder, moment):
    """The built file's bytes without symbols; of Windows files this sets the time, too."""
    source, target = TOP / "build" / build / file, folder / f"{build}-{Path(file).name}"
    if not source.exists():
        fail(f"{source} is not built: run ./package")
    subprocess.run([STRIP[build], "--strip-all", "-o", str(target), str(source)], check=True,
                   env={**os.environ, "SOURCE_DATE_EPOCH": str(moment)})
    data = target.read_bytes()
    target.unlink()
    if f"{TOP}/".encode() in data:
        fail(f"{source} tells the folder it was built in: {TOP}")
    return data


def compiler(build, question="--version"):
    """The first line of the compiler's answer."""
    return subprocess.run([COMPILER[build], question], capture_output=True, text=True, check=True).stdout.splitlines()[0]


def collect(folder, moment):
    """Name in the archive -> its bytes, and -> what it contains beside our own."""
    files, parts = {}, {}
    for build, rows in BINARIES.items():
        for file, places, contained in rows:
            data = stripped(build, file, folder, moment)
            if "web" in contained and WEB_MARK not in data:
                fail(f"build/{build}/{file} was built without `serve`, build/{build}.log tells why: run ./package")
            for place in places:
                files[place], parts[place] = data, contained
    for name in git("ls-files", "-z", "docs", "clients", "CHANGELOG.md", "web/openapi.json").split("\0"):
        if name and name not in LEFT_OUT:
            files[name] = (TOP / name).read_bytes()
    files["TAVRIX/TAVRIXOffsets.example.cfg"] = files["docs/TAVRIXOffsets.example.cfg"]
    gcc = compiler("linux", "-dumpversion").split(".")[0]
    for name in sorted(LICENCES):
        terms = Path(str(LICENCES[name][1]).replace("@", gcc))
        if not terms.exists():
            fail(f"{terms} is missing: the terms of {name} belong into the archive")
        files[f"licences/{name}.txt"] = terms.read_bytes()
        parts[f"licences/{name}.txt"] = [name]
    return files, parts


def contents(files, parts):
    """CONTENTS.txt: every file with its size and whose it is."""
    changed = ", with changes that are not committed" if git("status", "--porcelain", "--untracked-files=no") else ""
    lines = [f"TAVRIX {version()}: list of contents", "", f"Made from commit {git('rev-parse', 'HEAD').strip()}{changed}",
             "Built with"]
    lines += [f"  {build}: {compiler(build)}" for build in BINARIES]
    lines += ["", "Whose it is", "  own: TAVRIX. All rights reserved by its authors."]
    used = {name for each in parts.values() for name in each}
    lines += [f"  {name}: {what}; licences/{name}.txt" for name, (what, _) in LICENCES.items() if name in used]
    lines += ["", "    Bytes  File, and whose it is"]
    for name in sorted(files):
        owners = parts.get(name, []) if name.startswith("licences/") else ["own", *parts.get(name, [])]
        lines.append(f"{len(files[name]):9}  {name}  ({', '.join(owners)})")
    lines += ["", "SHA256SUMS has the checksum of each of them and of this list.", ""]
    return "\n".join(lines).encode()


def with_crlf(data):
    """As the editor of older Windows versions needs it, which else shows one long line."""
    return data.replace(b"\n", b"\r\n")


def write_zip(path, top, files, moment):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name in sorted(files):
            is_program = name.startswith("programs/linux/") and not name.endswith(".so")
            entry = zipfile.ZipInfo(f"{top}/{name}", time.gmtime(moment)[:6])
            entry.create_system = 3  # modes are those of Unix
            entry.external_attr = (stat.S_IFREG | (0o755 if is_program else 0o644)) << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(entry, files[name])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", type=Path)
    folder = parser.parse_args().folder
    folder.mkdir(parents=True, exist_ok=True)
    moment = int(os.environ.get("SOURCE_DATE_EPOCH") or git("log", "-1", "--format=%ct"))
    files, parts = collect(folder, moment)
    files["INSTALL.txt"] = with_crlf((TOP / "cmake/INSTALL.txt").read_bytes().replace(b"@VERSION@", version().encode()))
    files["CONTENTS.txt"] = with_crlf(contents(files, parts))
    files["SHA256SUMS"] = "".join(f"{hashlib.sha256(files[name]).hexdigest()}  {name}\n" for name in sorted(files)).encode()
    top = f"TAVRIX-{version()}"
    path = folder / f"{top}.zip"
    write_zip(path, top, files, moment)
    checksum = hashlib.sha256(path.read_bytes()).hexdigest()
    (folder / f"{top}.zip.sha256").write_text(f"{checksum}  {path.name}\n")
    print(f"{path}: {len(files)} files, {path.stat().st_size} bytes, SHA-256 {checksum}")


main()
