#!/usr/bin/env python3
"""A proxy for the tests of the exchange: connects whatever host it is asked for to this machine.

Prints its port, then each line of what a client asks it before the connection is made.
"""

import socket
import sys
import threading


def serve(client):
    asking = client.makefile("rb", buffering=0)
    lines = []
    while line := asking.readline().decode().rstrip("\r\n"):
        lines.append(line)
    sys.stdout.write("\n".join(lines) + "\nend\n")
    sys.stdout.flush()
    port = lines[0].split(" ")[1].rpartition(":")[2]
    server = socket.create_connection(("127.0.0.1", int(port)))
    client.sendall(b"HTTP/1.1 200 Connected\r\n\r\n")
    threading.Thread(target=pump, args=(client, server), daemon=True).start()
    pump(server, client)


def pump(source, target):
    try:
        while data := source.recv(65536):
            target.sendall(data)
        target.shutdown(socket.SHUT_WR)
    except OSError:
        pass


with socket.create_server(("127.0.0.1", 0)) as listener:
    print(listener.getsockname()[1], flush=True)
    while True:
        threading.Thread(target=serve, args=(listener.accept()[0],), daemon=True).start()
