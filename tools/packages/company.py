"""A company's network, for a machine on which the packages are tried: a feed that speaks TLS with a certificate of the
company's own authority, which the machine trusts, and a proxy that alone knows the way there."""

import datetime
import http.server
import pathlib
import socket
import ssl
import subprocess
import sys
import threading

HOST = "feed.company.test"
TREE = pathlib.Path(__file__).resolve().parents[2]
TRUSTED = pathlib.Path("/usr/local/share/ca-certificates/try-packages.crt")
FETCHER = "/usr/libexec/kivmenua/kivfetch"
DAY = datetime.timedelta(days=1)

# Of the command of openssl's that can sign for days that have passed.
AUTHORITY = """
[ca]
default_ca = company
[company]
certificate = ca.pem
private_key = ca.key
database = signed
unique_subject = no
new_certs_dir = .
rand_serial = yes
default_md = sha256
policy = names
[names]
commonName = supplied
"""


class Feed(http.server.BaseHTTPRequestHandler):
    messages = subprocess.run([sys.executable, "-B", TREE / "resources/demo/messages.py"], stdout=subprocess.PIPE,
                              check=True).stdout

    def do_GET(self):  # pylint: disable=invalid-name
        self.send_response(200)
        self.send_header("Content-Type", "text/xml")
        self.send_header("Content-Length", str(len(self.messages)))
        self.end_headers()
        self.wfile.write(self.messages)
        self.server.asked.append(self.path)

    def log_message(self, *_):  # pylint: disable=arguments-differ
        pass


class Proxy(http.server.BaseHTTPRequestHandler):
    """Takes whoever asks for the company's host to the feed of that port."""

    def do_CONNECT(self):  # pylint: disable=invalid-name
        host, _, port = self.path.rpartition(":")
        if host not in (HOST, "other." + HOST):
            self.send_error(403)
            return
        self.server.connected.append(self.path)
        with socket.create_connection(("127.0.0.1", int(port))) as feed:
            self.send_response(200)
            self.end_headers()
            there = threading.Thread(target=self._carry, args=(self.connection, feed))
            there.start()
            self._carry(feed, self.connection)
            there.join()

    @staticmethod
    def _carry(source, target):
        try:
            while content := source.recv(65536):
                target.sendall(content)
            target.shutdown(socket.SHUT_WR)
        except OSError:
            pass

    def log_message(self, *_):  # pylint: disable=arguments-differ
        pass


class Company:
    def __init__(self, folder):
        self._folder = folder
        self._folder.mkdir()
        self._servers = []
        self._inputs = []
        self._proxy = self._serve(Proxy)
        self._proxy.connected = []
        address = f"http://127.0.0.1:{self._proxy.server_port}"
        self.proxies = {"https_proxy": address, "http_proxy": address}

    def __enter__(self):
        self._openssl("req -x509 -newkey rsa:2048 -nodes -days 2 -keyout ca.key -out ca.pem -subj /CN=Company")
        (self._folder / "ca.cnf").write_text(AUTHORITY)
        (self._folder / "signed").touch()
        TRUSTED.write_bytes((self._folder / "ca.pem").read_bytes())
        self._trust_anew()
        self._feed = self._feed_with(self._certificate("feed", HOST))
        self.address = f"https://{HOST}:{self._feed.server_port}/feed"
        return self

    def __exit__(self, *_):
        for server in self._servers:
            server.shutdown()
            server.server_close()
        TRUSTED.unlink()
        self._trust_anew()

    def _serve(self, handler, context=None):
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        server.daemon_threads = True
        if context:
            server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self._servers.append(server)
        return server

    @staticmethod
    def _trust_anew():
        subprocess.run(["update-ca-certificates", "--fresh"], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)

    def _openssl(self, arguments):
        subprocess.run(["openssl", *arguments.split()], cwd=self._folder, check=True, stderr=subprocess.DEVNULL)

    def _certificate(self, name, host, until=2 * DAY):
        """A key and a certificate for that host, signed by the company's authority, good until so long from now."""
        def text(since_now):
            return (datetime.datetime.now(datetime.timezone.utc) + since_now).strftime("%Y%m%d%H%M%SZ")
        (self._folder / f"{name}.ext").write_text(f"subjectAltName=DNS:{host}\n")
        self._openssl(f"req -new -newkey rsa:2048 -nodes -keyout {name}.key -out {name}.csr -subj /CN={host}")
        self._openssl(f"ca -batch -notext -config ca.cnf -in {name}.csr -extfile {name}.ext -out {name}.pem "
                      f"-startdate {text(-3 * DAY)} -enddate {text(until)}")
        return name

    def _feed_with(self, name):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(self._folder / f"{name}.pem", self._folder / f"{name}.key")
        feed = self._serve(Feed, context)
        feed.asked = []
        return feed

    def try_certificates(self):
        """Asks feeds with a good certificate and with bad ones; leaves nothing asked of the good one."""
        self._openssl("req -x509 -newkey rsa:2048 -nodes -days 2 -keyout own.key -out own.pem "
                      f"-subj /CN={HOST} -addext subjectAltName=DNS:{HOST}")
        table = [("the company's certificate", self._feed, True),
                 ("another host's", self._feed_with(self._certificate("wrong", "other." + HOST)), False),
                 ("one that has expired", self._feed_with(self._certificate("old", HOST, -DAY)), False),
                 ("one that is signed by itself", self._feed_with("own"), False)]
        for what, feed, is_good in table:
            done = subprocess.run([FETCHER, f"https://{HOST}:{feed.server_port}/feed", "10000"], check=False,
                                  stdin=self._open_input(), stdout=subprocess.PIPE,
                                  env=self.proxies | {"LANG": "C.UTF-8"})
            taken = done.returncode == 0 and done.stdout.startswith(b"200 text/xml\n") and len(feed.asked) == 1
            refused = done.returncode == 1 and done.stdout == b"" and not feed.asked
            print(f"   a feed with {what} is {'taken' if taken else 'refused' if refused else 'NEITHER'}", flush=True)
            if not (taken if is_good else refused):
                sys.exit(1)
        self.forget()

    def _open_input(self):
        """Standard input that does not end, as the agent's to its fetcher."""
        reading, writing = socket.socketpair()
        self._inputs.append(writing)
        return reading

    def asked(self):
        """The paths that the feed with the good certificate has been asked for."""
        return list(self._feed.asked)

    def asked_by_proxy_only(self):
        return bool(self._feed.asked) and len(self._proxy.connected) >= len(self._feed.asked)

    def forget(self):
        """What has been asked so far."""
        self._feed.asked.clear()
        self._proxy.connected.clear()
