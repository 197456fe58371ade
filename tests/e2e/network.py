"""The network protocol for test code: frames, a plain client, and servers and proxies that misbehave on purpose.
Also a program: `network.py proxy LISTEN SERVER LOSS` drops that share of the server's datagrams,
`network.py listen ADDRESS` prints the next announcement that the interface of that address hears."""
import random
import select
import socket
import struct
import sys
import threading
import time

BLOCK = 0x4000
REQUESTS, CHANGES, ANNOUNCE = 18, 103, 20
PORT, BURST_PORT = 65000, 65100


def frame(kind, payload, end, auxiliary=0):
    return struct.pack("<BBHH", kind, 0, len(payload), auxiliary) + payload + struct.pack("<HH", len(payload), end)


def write_record(offset, data):
    return struct.pack("<III", 2, offset, len(data)) + data


def read_record(offset, size):
    return struct.pack("<IIII", 1, offset, size, 0) + bytes(size)


def request(*records):
    return frame(REQUESTS, b"".join(records) + bytes(4), 0xAFFE)


def block_frame(memory, index):
    return frame(6 + index, bytes(memory[index * BLOCK:(index + 1) * BLOCK]), 0x1A2B)


def change_frame(*entries):
    return frame(CHANGES, b"".join(struct.pack("<BBHBB", offset >> 16, 0, offset & 0xFFFF, value, 0)
                                   for offset, value in entries), 0xFADE)


def entries_of(datagram):
    """(offset, value) of a change frame."""
    return [(bank << 16 | low, value) for bank, low, value in struct.iter_unpack("<BxHBx", datagram[6:-4])]


def hex_file(path):
    """The bytes of a file of hexadecimal numbers with # comments."""
    return bytes.fromhex("".join(line.split("#")[0] for line in path.read_text().splitlines()))


class Client:
    """A connected client that keeps its picture of the memory and its last datagrams."""

    def __init__(self, host="127.0.0.1", source=""):
        for attempt in range(100):
            self.udp = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
            self.udp.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4 << 20)
            self.udp.bind((source, 0))
            self.tcp = socket.socket()
            self.tcp.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            try:
                self.tcp.bind((source, self.udp.getsockname()[1]))
                break
            except OSError:  # the number is in use for TCP
                self.close()
        self.tcp.settimeout(10)
        try:
            self.tcp.connect((host, PORT))
        except OSError:
            self.close()
            raise
        self.memory, self.blocks = bytearray(8 * BLOCK), set()

    def send(self, data):
        self.tcp.sendall(data)

    def take(self, timeout=10):
        """One datagram, applied to the picture; None when none comes in time."""
        self.udp.settimeout(max(timeout, 0.000001))
        try:
            datagram = self.udp.recv(65536)
        except (TimeoutError, BlockingIOError):
            return None
        kind = datagram[0]
        if 6 <= kind <= 13:
            self.memory[(kind - 6) * BLOCK:(kind - 5) * BLOCK] = datagram[6:-4]
            self.blocks.add(kind - 6)
        elif kind == CHANGES:
            for offset, value in entries_of(datagram):
                self.memory[offset] = value
        return datagram

    def until(self, what, condition, deadline=20):
        """Takes datagrams until the condition holds; returns them."""
        end, taken = time.monotonic() + deadline, []
        while not condition():
            datagram = self.take(min(0.2, end - time.monotonic()))
            if datagram is not None:
                taken.append(datagram)
            assert time.monotonic() < end, f"not within {deadline} s: {what}"
        return taken

    def complete(self):
        self.until("all blocks", lambda: len(self.blocks) == 8)
        return self

    def read(self, offset, size):
        return bytes(self.memory[offset:offset + size])

    def close(self):
        self.udp.close()
        self.tcp.close()


def silent_resolver(folder):
    """(a socket to be closed in the end, the beginning of a command): the command's process asks a name server that never
    answers. Needs root."""
    server = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    server.bind(("127.0.0.99", 53))
    settings = folder / "resolv.conf"
    settings.write_text("nameserver 127.0.0.99\noptions timeout:5 attempts:2\n")
    mount = f'mount --bind "{settings}" "$(realpath /etc/resolv.conf)" && exec "$@"'
    return server, ["unshare", "-m", "sh", "-c", mount, "sh"]


class ScriptedServer:
    """A server that does what a test says: accepts one client at a time and sends the datagrams it is given."""

    def __init__(self, host):
        self.listener = socket.create_server((host, PORT))
        self.udp = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.udp.bind((host, BURST_PORT))
        self.accepted = []
        self.received = b""
        self.thread = threading.Thread(target=self._accept, daemon=True)
        self.thread.start()

    def _accept(self):
        while True:
            try:
                connection, peer = self.listener.accept()
            except OSError:
                return
            self.accepted.append((connection, peer))

    def send(self, *datagrams, to=0):
        for datagram in datagrams:
            self.udp.sendto(datagram, self.accepted[to][1])

    def close(self):
        # shutdown wakes the accepting thread, close alone does not
        try:
            self.listener.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass
        self.listener.close()
        self.udp.close()
        for connection, _ in self.accepted:
            connection.close()
        self.thread.join(timeout=5)


class DroppingProxy:
    """Stands between clients and a server under an address of its own and drops a share of the datagrams."""

    def __init__(self, listen, server, loss, seed=1):
        self.server, self.loss, self.random = server, loss, random.Random(seed)
        self.passed = self.dropped = 0
        self.listen = listen
        self.listener = socket.create_server((listen, PORT))
        self.out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.out.bind((listen, BURST_PORT))
        self.running = True
        self.threads = [threading.Thread(target=self._accept, daemon=True)]
        self.threads[0].start()

    def _accept(self):
        while self.running:
            try:
                connection, peer = self.listener.accept()
            except OSError:
                return
            thread = threading.Thread(target=self._carry, args=(connection, peer), daemon=True)
            self.threads.append(thread)
            thread.start()

    def _carry(self, connection, peer):
        try:
            inner = Client(self.server, source=self.listen)
        except OSError:
            connection.close()
            return
        with connection:
            while self.running:
                ready, _, _ = select.select([connection, inner.tcp, inner.udp], [], [], 0.1)
                if inner.udp in ready:
                    datagram = inner.udp.recv(65536)
                    if self.random.random() < self.loss:
                        self.dropped += 1
                    else:
                        self.passed += 1
                        self.out.sendto(datagram, peer)
                if connection in ready:
                    data = connection.recv(65536)
                    if not data:
                        break
                    inner.send(data)
                if inner.tcp in ready and not inner.tcp.recv(65536):
                    break
        inner.close()

    def close(self):
        self.running = False
        try:
            self.listener.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass
        self.listener.close()
        for thread in self.threads:
            thread.join(timeout=5)
        self.out.close()


def run_proxy(listen, server, loss):
    proxy = DroppingProxy(listen, server, float(loss))
    print("ready", flush=True)
    sys.stdin.read()  # until the test closes it
    proxy.close()
    print(proxy.passed, proxy.dropped, flush=True)


def run_listener(address):
    group = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    group.bind(("", 54942))
    group.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP,
                     socket.inet_aton("239.192.0.10") + socket.inet_aton(address))
    group.settimeout(10)
    print(group.recv(1000).hex())


if __name__ == "__main__":
    {"proxy": run_proxy, "listen": run_listener}[sys.argv[1]](*sys.argv[2:])
