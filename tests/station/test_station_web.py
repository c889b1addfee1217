# SPDX-License-Identifier: MIT
"""Tests what a station answers over HTTP: its page, its metrics, whom it refuses. KELREADER names the program."""

import base64
import json
import os
import random
import re
import socket
import ssl
import http.client
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from station_run import HUNG, Station, simulated

PROGRAM = os.environ.get("KELREADER", "kelreader")
MOST_WATCHERS = 16
MOST_CLIENTS = 40
PATHS = ("/", "/page.css", "/page.js", "/icon.svg", "/state", "/sheets", "/batches", "/pictures/1.svg",
         "/batch.csv?reader=left&batch=monday")


class Web(unittest.TestCase):
    def station(self, readers=None, **more):
        station = Station(PROGRAM, readers if readers is not None else [simulated("left", count=2)], **more)
        self.addCleanup(station.close)
        return station

    def watch(self, station):
        """A connection that has asked for the events, and reads none of them."""
        connection = socket.create_connection(station.address().partition("//")[2].split(":"), timeout=HUNG)
        self.addCleanup(connection.close)
        connection.sendall(b"GET /events HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n")
        return connection


class AnswersTest(Web):
    @classmethod
    def setUpClass(cls):
        cls.fixed = Station(PROGRAM, [simulated("left", count=2)])
        cls.addClassCleanup(cls.fixed.close)
        cls.fixed.wait_for_sheets(2)

    def test_forbids_what_the_page_does_not_need(self):
        for path in (*PATHS, "/nothing"):
            with self.subTest(path):
                status, headers, text = self.fixed.request(path)
                self.assertEqual(status, 404 if path == "/nothing" else 200, text)
                self.assertIn("default-src 'none'", headers["Content-Security-Policy"])
                self.assertIn("frame-ancestors 'none'", headers["Content-Security-Policy"])
                self.assertEqual(len(headers.get_all("Content-Security-Policy")), 1)
                self.assertEqual(headers["X-Content-Type-Options"], "nosniff")
                self.assertEqual(headers["Referrer-Policy"], "no-referrer")
                self.assertEqual(headers["Cross-Origin-Resource-Policy"], "same-origin")
                self.assertEqual(headers["Cache-Control"], "no-store")
                self.assertIsNone(headers["Access-Control-Allow-Origin"])
        self.assertIn("script-src 'self'", self.fixed.request("/")[1]["Content-Security-Policy"])
        self.assertIn("sandbox", self.fixed.request("/pictures/1.svg")[1]["Content-Security-Policy"])

    def test_is_only_to_read(self):
        for path in ("/", "/state", "/events"):
            for method in ("POST", "PUT", "DELETE", "PATCH", "OPTIONS"):
                status, headers, _ = self.fixed.request(path, method)
                self.assertEqual((status, headers["Allow"]), (405, "GET, HEAD"), (method, path))
            status, headers, text = self.fixed.request(path, "HEAD")
            self.assertEqual((status, text), (200, ""), path)
        self.assertEqual(self.fixed.request("/", headers={"Range": "bytes=0-5"})[0], 416)

    def test_answers_to_its_address_alone(self):
        for host, status in (("127.0.0.1", 200), ("localhost:8181", 200), ("[::1]:8181", 200), ("example.com", 421),
                             ("127.0.0.1.example.com", 421), ("localhost.example.com:80", 421), ("", 421)):
            self.assertEqual(self.fixed.request("/state", headers={"Host": host})[0], status, host)

    def test_a_question_that_is_wrong_gets_a_sentence(self):
        for path, sentence in (("/sheets?since=yesterday", '"yesterday" is not a time; write 2024-01-31'),
                               ("/sheets?before=-1", '"-1" is not the number of a sheet.'),
                               ("/sheets?before=9" + 30 * "9", "is not the number of a sheet.")):
            status, _, text = self.fixed.request(path)
            self.assertEqual(status, 400, path)
            self.assertIn(sentence, text)
        for path in ("/pictures/0.svg", "/pictures/99.svg", "/pictures/1", "/pictures/../1.svg", "/pictures/%00.svg",
                     "/../station.json", "/hall.db"):
            self.assertEqual(self.fixed.request(path)[0], 404, path)

    def test_what_is_no_request_ends_nothing(self):
        place = self.fixed.address().partition("//")[2].split(":")
        for text in (b"\r\n\r\n", b"GET\r\n\r\n", b"BREW / HTTP/1.1\r\n\r\n", b"\x16\x03\x01\x02\x00", b"GET / HTTP/9.9\r\n\r\n",
                     b"GET /" + 100_000 * b"a" + b" HTTP/1.1\r\n\r\n", b"GET / HTTP/1.1\r\n" + 3000 * b"X: y\r\n" + b"\r\n",
                     b"POST / HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 99999999999999999999\r\n\r\n",
                     b"GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nRange: bytes=" + 1500 * b"0-," + b"0-\r\n\r\n"):
            with socket.create_connection(place, timeout=HUNG) as connection:
                connection.sendall(text)
                connection.shutdown(socket.SHUT_WR)
                try:
                    while connection.recv(65536):
                        pass
                except ConnectionResetError:
                    pass
            self.assertEqual(self.fixed.request("/state")[0], 200, text[:30])

    def test_mangled_requests_end_nothing(self):
        chance = random.Random(1)
        place = self.fixed.address().partition("//")[2].split(":")
        host = f"Host: {':'.join(place)}\r\n".encode()
        sound = [b"GET " + path + b" HTTP/1.1\r\n" + host + b"Accept: */*\r\n\r\n" for path in (
            b"/", b"/state", b"/sheets?reader=left&since=2024-01-31&blank=1&before=9", b"/pictures/1.svg",
            b"/batch.csv?reader=left&batch=monday", b"/batches", b"/page.js")]
        sound.append(b"POST /sheets HTTP/1.1\r\n" + host + b"Content-Length: 5\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\n")
        for number in range(300):
            text = bytearray(chance.choice(sound))
            for _ in range(chance.randrange(1, 6)):
                at = chance.randrange(len(text))
                match chance.randrange(4):
                    case 0: text[at] = chance.randrange(256)
                    case 1: text[at:at] = chance.choice([b"%", b"%00", b"\r\n", b"\0", b"&", b"=", b"../", b"\xff", b"9" * 40, b":"])
                    case 2: del text[at:at + chance.randrange(1, 9)]
                    case 3: text[at:at] = text[:chance.randrange(len(text))]
            with socket.create_connection(place, timeout=HUNG) as connection:
                connection.sendall(text)
                connection.shutdown(socket.SHUT_WR)
                try:
                    while connection.recv(65536):
                        pass
                except ConnectionResetError:
                    pass
            self.assertIsNone(self.fixed.process.poll(), (number, bytes(text), self.fixed.told()))
        self.assertEqual(self.fixed.request("/state")[0], 200)

    def test_metrics_have_the_numbers_of_the_state(self):
        status, headers, text = self.fixed.request("/metrics", kind="metrics")
        self.assertEqual(status, 200)
        self.assertTrue(headers["Content-Type"].startswith("text/plain; version=0.0.4"))
        described, values = set(), {}
        for line in text.splitlines():
            if found := re.fullmatch(r"# (HELP|TYPE) ([a-z_]+) (.+)", line):
                described.add((found[1], found[2]))
                continue
            name, labels, value = re.fullmatch(r'([a-z_]+)\{((?:[a-z]+="[^"\\]*",?)+)\} ([0-9.]+)', line).groups()
            self.assertLessEqual({("HELP", name), ("TYPE", name)}, described)
            values[name, labels] = float(value)
        shown = json.loads(self.fixed.run("station", self.fixed.file, "--state", "--format", "json").stdout)
        reader = shown["readers"][0]
        left = 'station="hall",reader="left"'
        self.assertEqual(values["kelreader_sheets_total", left], reader["sheets"])
        self.assertEqual(values["kelreader_rejected_total", left], reader["rejected"])
        self.assertEqual(values["kelreader_failures_total", left], reader["failures"])
        self.assertEqual(values["kelreader_reader_state", left + ',state="idle"'], 1)
        self.assertEqual(values["kelreader_store_size_bytes", 'station="hall"'], shown["storeBytes"])
        self.assertEqual(values["kelreader_page_watchers", 'station="hall"'], shown["watchers"])
        self.assertTrue(1.7e9 < values["kelreader_reader_last_sheet_timestamp_seconds", left] < 4e9)
        self.assertEqual(self.fixed.request("/", kind="metrics")[0], 404)
        self.assertEqual(self.fixed.request("/metrics", "POST", kind="metrics")[0], 405)
        self.assertEqual(self.fixed.request("/metrics", headers={"Host": "example.com"}, kind="metrics")[0], 421)


class SlowSendersTest(Web):
    def test_a_request_that_never_ends_is_given_up(self):
        station = self.station()
        place = station.address().partition("//")[2].split(":")
        slow = [socket.create_connection(place, timeout=HUNG) for _ in range(MOST_CLIENTS)]
        begun = b"GET /state HTTP/1.1\r\nHost: 127.0.0.1\r\nX: "
        for connection in slow:
            self.addCleanup(connection.close)
            connection.sendall(begun)
            connection.setblocking(False)
        # Each sends on and on, a little at a time, until it is given up; and then somebody else is answered.
        end = time.monotonic() + HUNG
        while slow:
            self.assertLess(time.monotonic(), end, f"{len(slow)} are not given up")
            for connection in list(slow):
                try:
                    connection.send(b"y")
                    if not connection.recv(65536):
                        slow.remove(connection)
                except BlockingIOError:
                    pass
                except OSError:
                    slow.remove(connection)
            time.sleep(0.2)
        self.assertEqual(station.request("/state")[0], 200)
        self.assertEqual(station.stop(), 0)


class WatchersTest(Web):
    def test_readers_do_not_wait_for_whoever_takes_nothing(self):
        station = self.station([simulated(f"reader-{n}", count=5, seed=n) for n in range(4)])
        hanging = [self.watch(station) for _ in range(MOST_WATCHERS)]
        station.wait(lambda: station.json("/state")["watchers"] == MOST_WATCHERS)
        status, headers, text = station.request("/events")
        self.assertEqual((status, headers["Retry-After"]), (503, "10"))
        self.assertIn("close one of them", text)
        station.wait_for_sheets(20)
        self.assertEqual(len(station.json("/sheets")["sheets"]), 20)
        for connection in hanging:
            connection.close()
        station.wait(lambda: station.json("/state")["watchers"] == 0)

    def test_a_station_ends_although_it_is_watched(self):
        station = self.station()
        watching = self.watch(station)
        self.assertIn(b"200 OK", watching.recv(15))
        station.wait(lambda: station.json("/state")["watchers"] == 1)
        self.assertEqual(station.stop(), 0)
        while watching.recv(65536):
            pass


class RefusalsTest(Web):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=hall",
                        "-addext", "subjectAltName=DNS:hall.example.com,IP:127.0.0.1", "-keyout", "page.key", "-out",
                        "page.pem"], cwd=self.folder, check=True, capture_output=True)
        hashed = subprocess.run(["openssl", "passwd", "-6", "pass:wörd"], check=True, capture_output=True, text=True)
        self.write("people", f"# who may look\nanna:{hashed.stdout}")
        (self.folder / "page.key").chmod(0o600)

    def write(self, name, text, mode=0o640):
        (self.folder / name).write_text(text)
        (self.folder / name).chmod(mode)

    def page(self, **more):
        return {"port": 0, "address": "0.0.0.0", "passwords": "people", "certificate": "page.pem", "key": "page.key", **more}

    def refusal(self, page):
        """What a station tells that does not start with a page, and what its check tells; they are one."""
        station = self.station([simulated("left")], folder=self.folder, page=page)
        self.assertEqual(station.process.wait(HUNG), 2, station.told())
        self.assertFalse(station.store.exists())
        checked = station.run("station", "--check", station.file)
        self.assertEqual((checked.returncode, checked.stderr), (2, station.told()))
        return checked.stderr

    def test_other_machines_need_names_and_secrecy(self):
        for missing in ("passwords", "certificate", "key"):
            page = self.page()
            del page[missing]
            self.assertIn("page ", self.refusal(page))
        self.assertIn("page can be reached from other machines at 0.0.0.0; give it \"passwords\"",
                      self.refusal({"port": 0, "address": "0.0.0.0"}))
        self.assertIn("at ::;", self.refusal({"port": 0, "address": "::"}))

    def test_files_that_cannot_be_used_are_told(self):
        self.assertIn("none cannot be read: No such file", self.refusal(self.page(passwords="none")))
        self.assertIn("The certificate", self.refusal(self.page(certificate="people")))
        self.assertIn("The key", self.refusal(self.page(key="people")))
        self.write("plain", "# nobody\nanna:secret\n")
        self.assertIn("has no name and hash in line 2; make a hash with", self.refusal(self.page(passwords="plain")))
        self.write("empty", "")
        self.assertIn("has no users", self.refusal(self.page(passwords="empty")))
        (self.folder / "page.key").chmod(0o644)
        self.assertIn("can be read or written by everybody", self.refusal(self.page()))
        (self.folder / "page.key").chmod(0o600)
        (self.folder / "people").chmod(0o644)
        self.assertIn("can be read or written by everybody", self.refusal(self.page()))

    def test_a_port_that_is_in_use_is_told(self):
        with socket.create_server(("127.0.0.1", 0)) as taken:
            station = self.station(folder=self.folder, page={"port": taken.getsockname()[1]})
            self.assertEqual(station.process.wait(HUNG), 1)
            self.assertIn("cannot be used: Address already in use. Name another port", station.told())
            self.assertFalse(station.store.exists())

    def test_whoever_has_a_name_may_look(self):
        station = self.station([simulated("left", count=1)], folder=self.folder, page=self.page())
        port = int(station.address().rpartition(":")[2])
        self.assertTrue(station.address().startswith("https://0.0.0.0:"))
        trust = ssl.create_default_context(cafile=self.folder / "page.pem")

        def ask(name=None, password="", host="127.0.0.1"):
            connection = http.client.HTTPSConnection("127.0.0.1", port, timeout=HUNG, context=trust)
            headers = {"Host": host}
            if name:
                headers["Authorization"] = "Basic " + base64.b64encode(f"{name}:{password}".encode()).decode()
            connection.request("GET", "/state", headers=headers)
            answer = connection.getresponse()
            self.addCleanup(connection.close)
            return answer.status, answer.headers["WWW-Authenticate"], answer.read().decode()

        status, wanted, text = ask()
        self.assertEqual(status, 401)
        self.assertIn("Basic realm=", wanted)
        self.assertNotIn("hall", text)
        for name, password in (("anna", "wrong"), ("otto", "pass:wörd"), ("anna", ""), ("", "pass:wörd")):
            self.assertEqual(ask(name, password)[0], 401, (name, password))
        for _ in range(2):
            status, _, text = ask("anna", "pass:wörd")
            self.assertEqual((status, json.loads(text)["station"]), (200, "hall"))
        self.assertEqual(ask("anna", "pass:wörd", "hall.example.com")[0], 200)
        self.assertEqual(ask("anna", "pass:wörd", "example.com")[0], 421)
        # Without TLS nothing is said, and the server goes on.
        plain = http.client.HTTPConnection("127.0.0.1", port, timeout=HUNG)
        self.addCleanup(plain.close)
        plain.request("GET", "/state")
        self.assertRaises((http.client.HTTPException, OSError), plain.getresponse)
        self.assertEqual(ask("anna", "pass:wörd")[0], 200)
        self.assertEqual(station.stop(), 0)


if __name__ == "__main__":
    unittest.main()
