"""The hidden window against programs that flood it, close it or have fewer rights, and how it ends."""
import re
import time

import pytest

from conftest import wait_for

pytestmark = pytest.mark.wine

STATED_SLEEPS = 0.3  # seconds that disable takes of itself
FLOOD = 25           # seconds; disable must not have to wait for a flood's end


@pytest.fixture(params=["win32", "win64"])
def build(request):
    return request.getfixturevalue(request.param)


def serving(start, build):
    standin = start(build, "--rate", "0", "--flight", "none")
    standin.ask("frames 60")
    standin.wait_log("Register of joystickcapturewindow")
    return standin


@pytest.fixture
def client(win32, begin_process):
    """client(word...) -> a crafted client that has begun."""
    return lambda *words: begin_process(win32.command("rude_client_win32", *words))


def disable_is_quick(standin):
    started = time.monotonic()
    standin.ask("disable")
    assert time.monotonic() - started < STATED_SLEEPS + 1
    end = ["TAVRIX->Closing Window", "TAVRIX->Closed KORLMain Thread!", "TAVRIX deinit OK!"]
    places = [standin.log().rfind(line) for line in end]
    assert -1 not in places and places == sorted(places), places


@pytest.mark.parametrize("way", ["flood-posted", "flood-threads", "flood-sent"])
def test_a_flood_does_not_delay_the_end(start, build, client, way):
    standin = serving(start, build)
    floods = [client(way, FLOOD, 4) for _ in range(2)]
    for flood in floods:
        assert flood.stdout.readline() == "flooding\n"
    disable_is_quick(standin)
    standin.quit()


def test_a_request_of_any_length_does_not_delay_the_end(start, win32, client):
    standin = serving(start, win32)
    request = client("long-request", 512)
    assert request.stdout.readline() == "sent\n"
    disable_is_quick(standin)
    started = time.monotonic()
    answers = [int(word) for word in re.findall(r"-?\d+", request.stdout.readline())]
    assert time.monotonic() - started < 5  # those that wait are refused, long before their own limit of 20 s
    assert answers[0] == 0 and len(answers) == 4 and set(answers[1:]) <= {0, -1}, answers
    standin.quit()


def test_programs_with_fewer_rights_are_let_in(start, build, monkeypatch):
    """Wine keeps no messages back, but says on its own diagnostic channel that it was asked to let some through."""
    monkeypatch.setenv("WINEDEBUG", "-all,fixme+msg")
    standin = serving(start, build)
    wait_for("the request", lambda: any("ChangeWindowMessageFilterEx" in line for line in standin.errors))
    asked = [line for line in standin.errors if "ChangeWindowMessageFilterEx" in line]
    assert len(asked) == 1
    message, action = re.search(r" ([0-9a-f]+) (\d+) (?:\(nil\)|0+)\s*$", asked[0]).groups()
    assert 0xC000 <= int(message, 16) <= 0xFFFF and action == "1", asked  # a registered message; let it through
    standin.quit()
