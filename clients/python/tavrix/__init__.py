"""Reads and controls X-Plane through the offsets of TAVRIX (docs/clients.md).

    import tavrix
    from tavrix import names

    with tavrix.connect("192.168.0.5") as sim:
        print(sim.read(names.heading))
        sim.write(names.ap_heading_bug, 270, confirm=True)
"""
from typing import Optional, Union

from . import names
from .client import Client
from .errors import Disconnected, NoServer, NotConfirmed, NotWritable, Refused, TavrixError
from .local import LocalClient
from .network import NetworkClient, find
from .offset import Bits, Choice, Offset

__all__ = ["connect", "find", "names", "Client", "LocalClient", "NetworkClient", "Offset", "Bits", "Choice",
           "TavrixError", "NoServer", "Refused", "Disconnected", "NotWritable", "NotConfirmed"]


def connect(host: Optional[str] = None, timeout: float = 10.0) -> Union[NetworkClient, LocalClient]:
    """A client of the server at `host`: a name or address, or "local" for the local window (Windows).

    Without a host: the local window, else the first server that announces itself, else this computer."""
    if host == "local":
        return LocalClient()
    if host is not None:
        return NetworkClient(host, timeout)
    try:
        return LocalClient()
    except NoServer:
        pass
    for address in find() or ["127.0.0.1"]:
        try:
            return NetworkClient(address, timeout)
        except NoServer:
            pass
    raise NoServer("no simulator found: it does not run here, and none on this network announces itself; name its "
                   "computer: tavrix.connect(\"192.168.0.5\")")
