#!/usr/bin/env python3
"""A server of updates for the tests, with a way of answering for each path.

    update_server.py FOLDER ADDRESS [CERTIFICATE KEY]

Serves the files of a folder as "/file/NAME", and what `serve` names. Prints what provider_server.py
prints.
"""

import os
import sys
import time

import provider_server

CHUNK_BYTES = 1 << 20


def head(status, length=None, header=""):
    length = "" if length is None else f"Content-Length: {length}\r\n"
    return f"HTTP/1.1 {status} Said\r\n{length}{header}\r\n".encode()


def send_file(connection, path, limit=None, tells_length=True):
    size = os.path.getsize(path)
    connection.sendall(head(200, size if tells_length else None))
    left = size if limit is None else limit
    with open(path, "rb") as file:
        while left > 0 and (chunk := file.read(min(left, CHUNK_BYTES))):
            connection.sendall(chunk)
            left -= len(chunk)


def serve(connection, path, query, token):
    _, way, *rest = path.split("/")
    name = os.path.join(folder, *rest)
    if way == "file":
        send_file(connection, name)
    elif way == "unannounced":
        send_file(connection, name, tells_length=False)
        connection.unwrap()  # says that nothing follows
    elif way == "halted":
        send_file(connection, name, limit=os.path.getsize(name) // 2)
        provider_server.wait_until_gone(connection)
    elif way == "slow-redirect":
        time.sleep(0.4)
        left = int(rest[0])
        place = f"/slow-redirect/{left - 1}" if left > 1 else "/text"
        connection.sendall(head(302, 0, f"Location: {place}\r\n"))
    elif way == "truncated":
        send_file(connection, name, limit=os.path.getsize(name) - 1)
    elif way == "redirect":
        connection.sendall(head(302, 5, f"Location: {query}\r\n") + b"moved")
    else:
        provider_serve(connection, path, query, token)


folder = sys.argv[1]
provider_serve, provider_server.serve = provider_server.serve, serve
provider_server.main(*sys.argv[2:])
