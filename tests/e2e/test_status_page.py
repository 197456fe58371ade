"""The status page in a real browser."""
import re
import subprocess

from conftest import TOP, wait_for


def chromium(profile, *arguments):
    return subprocess.run(
        ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync",
         f"--user-data-dir={profile}", *arguments, "http://127.0.0.1:4321/"],
        capture_output=True, text=True, timeout=60)


def test_status_page_in_chromium(start, linux, tmp_path):
    standin = start(linux)
    standin.ask("frames 120")
    wait_for("the status page", lambda: (standin.root / "httpLog.txt").exists())
    page = chromium(tmp_path / "one", "--dump-dom")
    text = re.sub(r"\s+", " ", page.stdout)
    assert "<h1>TAVRIX version: 2.0.5.25 </h1>" in text, page.stdout + page.stderr
    lines = ["TAVRIX Datarate: \\d+ 1/sec", "Ground elevation: -?\\d+ m", "Ground speed: -?\\d+ m/sec",
             "Vertical speed: -?\\d+ m/sec", "Aircraft pitch: -?\\d+\\.\\d{6} degrees",
             "Aircraft bank: -?\\d+\\.\\d{6} degrees", "Aircraft heading: \\d+ degrees"]
    assert re.search("<br>".join(lines), text), text
    picture = TOP / "out" / "status-page.png"
    picture.parent.mkdir(exist_ok=True)
    picture.unlink(missing_ok=True)
    chromium(tmp_path / "two", f"--screenshot={picture}", "--window-size=600,400")
    assert picture.stat().st_size > 2000
    standin.quit()
    assert "http command=GET / HTTP/1.1" in (standin.root / "httpLog.txt").read_text()
