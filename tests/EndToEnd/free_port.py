"""Ports for the servers of the tests."""
import random
import socket


def listen():
    """A socket that listens on a free port of 127.0.0.1. The port has four digits: the client's port
    file holds no more."""
    first = random.randrange(2000, 10000)
    for port in (*range(first, 10000), *range(2000, first)):
        listener = socket.socket()
        try:
            listener.bind(("127.0.0.1", port))
            listener.listen()
            return listener
        except OSError:
            listener.close()
    raise RuntimeError("no free four-digit port")
