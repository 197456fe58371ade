"""Pictures of the plug-in's windows, as the stand-in's console draws them."""
import struct
import zlib

import pytest

from make_pictures import read_svg

TITLE_BAR, SCALE = (0x2C, 0x45, 0x60), 2


def read_png(path):
    """Rows of pixels, each (red, green, blue). Checks the file on the way."""
    data = path.read_bytes()
    assert data.startswith(b"\x89PNG\r\n\x1a\n")
    at, chunks = 8, []
    while at < len(data):
        size, = struct.unpack_from(">I", data, at)
        body = data[at + 4:at + 8 + size]
        assert struct.unpack_from(">I", data, at + 8 + size) == (zlib.crc32(body),)
        chunks.append((body[:4], body[4:]))
        at += 12 + size
    assert [name for name, _ in chunks] == [b"IHDR", b"IDAT", b"IEND"]
    width, height, *kind = struct.unpack(">IIBBBBB", chunks[0][1])
    assert kind == [8, 2, 0, 0, 0]
    rows = zlib.decompress(chunks[1][1])
    assert len(rows) == height * (1 + 3 * width) and len(data) * 10 < len(rows)
    lines = [rows[i:i + 1 + 3 * width] for i in range(0, len(rows), 1 + 3 * width)]
    assert all(line[0] == 0 for line in lines)
    return [list(zip(line[1::3], line[2::3], line[3::3])) for line in lines]


@pytest.mark.parametrize("build", ["linux", pytest.param("win32", marks=pytest.mark.wine)])
def test_a_picture_shows_what_the_other_format_tells(build, start, request, tmp_path):
    build = request.getfixturevalue(build)
    standin = start(build, "--rate", "0", "--flight", "none")
    standin.ask('menu "TAVRIX Version and Info"')
    paths = [tmp_path / "windows.png", tmp_path / "windows.svg"]
    for path in paths:
        assert standin.ask(f'picture "{build.path(path)}"'.replace("\\", "\\\\")) == ""
    missing = build.path(tmp_path / "none" / "windows.png").replace("\\", "\\\\")
    assert standin.say(f'picture "{missing}"').startswith("error: cannot write")
    pixels = read_png(paths[0])
    (left, top, right, bottom), widgets = read_svg(paths[1])
    assert (len(pixels[0]), len(pixels)) == ((right - left) * SCALE, (top - bottom) * SCALE)

    def at(x, y):  # the middle of a screen pixel
        return pixels[(top - y) * SCALE + 1][(x - left) * SCALE + 1]

    window = widgets[0]
    assert window["class"] == "window" and f'window "{window["text"]}"' in standin.ask("widgets")
    title = window["text-box"]
    assert at(title[0] - 5, title[1] - 5) == at(title[2] + 5, title[1] - 5) == TITLE_BAR
    # Each caption's ink lies within the width that the simulator measures for it, and takes most of it.
    captions = [each for each in widgets if each["class"] == "caption" and each["text"]]
    assert captions
    for each in captions:
        x1, y1, x2, y2 = each["text-box"]
        assert x2 - x1 == 6 * len(each["text"])
        inked = [x for x in range(x1 - 4, x2 + 4) for y in range(y2, y1) if max(at(x, y)) < 0x60]
        assert x1 <= min(inked) < x1 + 12 and x2 - 12 < max(inked) < x2, each
    standin.quit()
