#!/usr/bin/env python3
"""A provider for the tests of the exchange, with a way of answering for each path.

    provider_server.py ADDRESS [CERTIFICATE KEY [PAUSE]]

Prints its port, then a line for each request ("POST /text" and, after blanks, the values of the
headers in `SHOWN` and the body) and "gone" when a client leaves before its answer is complete.
Without a certificate it speaks plain HTTP. With a pause, in seconds, it prints "connected" for each
connection and waits that long before the handshake.
"""

import socket
import ssl
import sys
import threading
import time

SHOWN = ("authorization", "content-type")
CHUNK = b"x" * 65536
HUNDRED_MEGABYTES = 100 << 20


def say(line):
    sys.stdout.write(line + "\n")
    sys.stdout.flush()


def answer(status, body, header=""):
    return (f"HTTP/1.1 {status} Said\r\nContent-Length: {len(body)}\r\n{header}\r\n").encode() + body


def wait_until_gone(connection):
    while connection.recv(4096):
        pass
    raise ConnectionError


def endlessly(connection, piece, pause=0.0):
    while True:
        connection.sendall(piece)
        time.sleep(pause)


def serve(connection, path, query, token):
    send = connection.sendall
    if path == "/text":
        send(answer(200, b'{"output_text": "fine"}'))
    elif path == "/echo":
        send(answer(int(query), b"b" * 300 + token.encode()))
    elif path == "/status":
        send(answer(int(query), b"b" * 1000))
    elif path == "/bodiless":
        send(answer(int(query), b""))
    elif path == "/unreadable":
        send(answer(200, b'{"output": 1}'))
    elif path == "/not-utf8":
        send(answer(int(query), b'{"output_text": "\xff\xfe"}'))
    elif path == "/redirect":
        send(answer(307, b"moved", f"Location: {query}\r\n"))
    elif path == "/broken":
        send(b"HTTP/1.1 200 Said\r\nContent-Length: 1000\r\n\r\n{")
    elif path == "/closed":
        pass
    elif path == "/other-protocol":
        send(b"220 at your service\r\n")
    elif path == "/silent":
        wait_until_gone(connection)
    elif path == "/drip":
        send(b"HTTP/1.1 200 Said\r\nContent-Length: 1000\r\n\r\n")
        endlessly(connection, b"{", 1.0)
    elif path == "/large":
        send(f"HTTP/1.1 200 Said\r\nContent-Length: {HUNDRED_MEGABYTES}\r\n\r\n".encode())
        endlessly(connection, CHUNK)
    elif path == "/large-without-length":
        send(b"HTTP/1.1 200 Said\r\n\r\n")
        endlessly(connection, CHUNK)
    elif path == "/headers":
        send(b"HTTP/1.1 200 Said\r\n")
        endlessly(connection, b"A: " + b"x" * 1000 + b"\r\n")


def receive(stream):
    """The method, the target, the header fields and the body of a request."""
    method, target, _ = stream.readline().decode().split(" ")
    fields = {}
    while line := stream.readline().decode().rstrip("\r\n"):
        name, _, value = line.partition(": ")
        fields[name.lower()] = value
    return method, target, fields, stream.read(int(fields.get("content-length", 0))).decode()


def handle(connection, context, pause):
    try:
        if context:
            time.sleep(pause)
            connection = context.wrap_socket(connection, server_side=True)
        with connection:
            method, target, fields, body = receive(connection.makefile("rb"))
            path, _, query = target.partition("?")
            say(" ".join([method, path, *(fields.get(name, "-") for name in SHOWN), body]))
            serve(connection, path, query, fields.get("authorization", ""))
    except ValueError:
        pass  # a client that did not get as far as a request
    except OSError:
        say("gone")


def main(address, certificate=None, key=None, pause=None):
    context = None
    if certificate:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, key)
    family = socket.AF_INET6 if ":" in address else socket.AF_INET
    with socket.create_server((address, 0), family=family) as listener:
        say(str(listener.getsockname()[1]))
        while True:
            connection, _ = listener.accept()
            if pause is not None:
                say("connected")
            threading.Thread(target=handle, args=(connection, context, float(pause or 0)),
                             daemon=True).start()


if __name__ == "__main__":
    main(*sys.argv[1:])
