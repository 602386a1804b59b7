"""Ports for the servers of the tests."""
import random
import socket

# The marks of the reserved ports; the system takes them back with the process.
_marks = []


def reserve():
    """A port of 127.0.0.1 that no other test takes until this program ends, whether anybody listens on
    it or not. It has four digits: the client's port file holds no more. The tests in C++ mark theirs in
    the same way, with the port of the same number for datagrams (Support/ReservedPort.cpp)."""
    first = random.randrange(2000, 10000)
    for port in (*range(first, 10000), *range(2000, first)):
        mark = socket.socket(type=socket.SOCK_DGRAM)
        try:
            mark.bind(("127.0.0.1", port))
            with socket.create_server(("127.0.0.1", port)):
                _marks.append(mark)
                return port
        except OSError:
            mark.close()
    raise RuntimeError("no free four-digit port")


def listen():
    """A socket that listens on such a port."""
    return socket.create_server(("127.0.0.1", reserve()))
