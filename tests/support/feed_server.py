"""A web server that answers as its script says, for tests of clients.

    feed_server.py FILE [CERTIFICATE]

FILE holds a JSON list of answers; the first request gets the first answer and so on, and the last one serves all that
follow. With a certificate, a PEM file that also has its key, it speaks TLS. An answer is an object with these keys, all
optional:

    status    the status code, 200 unless given
    headers   a list of [name, value]
    interim   what is sent ahead of the answer, one character for each byte
    body      the body, one character for each byte
    gated     true: send nothing before the line "go N" comes on standard input, N being the request's number from 0
    pieces    the size of the pieces in which everything is sent, each in a packet of its own
    pause     how many milliseconds to wait after each piece
    cut       how many bytes of the body to send before the connection is cut
    silence   how many bytes of the body to send before falling silent; the connection stays open

The port on 127.0.0.1 goes to standard output in a first line. Then each request does, and each answer whose connection
the client closed before all of it was sent or while the server was silent: one JSON object in a line,
{"request": N, "line": "...", "headers": {"name in lower case": "value"}} or {"closed": N}.
"""

import json
import socket
import ssl
import sys
import threading
import time

gates = {}
lock = threading.Lock()


def say(what):
    with lock:
        print(what if isinstance(what, str) else json.dumps(what), flush=True)


def gate(number):
    with lock:
        return gates.setdefault(number, threading.Event())


def read_request(connection):
    received = b""
    while b"\r\n\r\n" not in received:
        some = connection.recv(65536)
        if not some:
            return None
        received += some
    return received.decode("latin-1").split("\r\n\r\n")[0].split("\r\n")


def head_of(answer, size):
    lines = ["HTTP/1.1 %d Scripted" % answer.get("status", 200)]
    lines += ["%s: %s" % (name, value) for name, value in answer.get("headers", [])]
    lines += ["Content-Length: %d" % size, "Connection: close", "", ""]
    return "\r\n".join(lines).encode("latin-1")


def serve(connection, number, answer, tls):
    with connection:
        if tls:
            try:
                connection = tls.wrap_socket(connection, server_side=True)
            except OSError:
                say({"closed": number})
                return
        request = read_request(connection)
        if request is None:
            return
        fields = [line.split(":", 1) for line in request[1:]]
        say({"request": number, "line": request[0], "headers": {n.lower(): v.strip() for n, v in fields}})
        if answer.get("gated"):
            gate(number).wait()

        body = answer.get("body", "").encode("latin-1")
        sent = body[: answer.get("cut", answer.get("silence", len(body)))]
        everything = answer.get("interim", "").encode("latin-1") + head_of(answer, len(body)) + sent
        pieces = answer.get("pieces", len(everything))
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        try:
            for start in range(0, len(everything), pieces):
                connection.sendall(everything[start : start + pieces])
                time.sleep(answer.get("pause", 0) / 1000)
            if "silence" in answer and not connection.recv(1):
                say({"closed": number})
        except ConnectionError:
            say({"closed": number})


def listen_for_gates():
    for line in sys.stdin:
        gate(int(line.split()[1])).set()


def main():
    with open(sys.argv[1], encoding="utf-8") as script:
        answers = json.load(script)
    tls = None
    if len(sys.argv) > 2:
        tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        tls.load_cert_chain(sys.argv[2])
    listener = socket.create_server(("127.0.0.1", 0))
    say(str(listener.getsockname()[1]))
    threading.Thread(target=listen_for_gates, daemon=True).start()
    number = 0
    while True:
        connection, _ = listener.accept()
        answer = answers[min(number, len(answers) - 1)]
        threading.Thread(target=serve, args=(connection, number, answer, tls), daemon=True).start()
        number += 1


main()
