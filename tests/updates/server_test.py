"""The update helper of a small bundle against a real server on this machine, which is not always a good one."""

import http.server
import json
import os
import plistlib
import shutil
import ssl
import stat
import subprocess
import tempfile
import threading
import time
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
HELPER = os.path.join(os.environ.get("DORMEL_BUILD", os.path.join(ROOT, "build", "release")),
                      "Dormel.app", "Contents", "Helpers", "update")
NOBODY = 65534


class Server(http.server.ThreadingHTTPServer):
    """Answers what its table says: bytes, or a function of the request."""
    daemon_threads = True

    def __init__(self):
        self.answers, self.asked = {}, []
        self.ended = threading.Event()
        super().__init__(("127.0.0.1", 0), Handler)
        self.url = f"http://127.0.0.1:{self.server_port}"
        threading.Thread(target=self.serve_forever, daemon=True).start()


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        self.server.asked.append(self.path)
        answer = self.server.answers.get(self.path.partition("?")[0])
        if callable(answer):
            answer(self)
        elif answer is None:
            self.send_error(404)
        else:
            self.give(answer)

    def give(self, body, announced=None):
        self.send_response(200)
        self.send_header("Content-Length", announced or len(body))
        self.end_headers()
        self.wfile.write(body)

    def go_on(self, location):
        self.send_response(302)
        self.send_header("Location", location)
        self.send_header("Content-Length", 0)
        self.end_headers()

    def stall(self, body):
        self.give(body[:len(body) // 2], len(body))
        self.wfile.flush()
        self.server.ended.wait(30)

    def log_message(self, *_):
        pass


def tool(*arguments):
    done = subprocess.run([os.path.join(ROOT, "tools", "sign-update"), *arguments], check=True, capture_output=True,
                          text=True)
    return done.stdout.strip()


def make_bundle(path, version, build, public=None, feed=None, identifier="test.bundle"):
    os.makedirs(os.path.join(path, "Contents", "Linux"))
    info = {"CFBundleIdentifier": identifier, "CFBundleExecutable": "Dormel", "CFBundleVersion": build,
            "CFBundleShortVersionString": version, "SUScheduledCheckInterval": 21600}
    if public:
        info.update(SUPublicEDKey=public, SUFeedURL=feed)
    with open(os.path.join(path, "Contents", "Info.plist"), "wb") as file:
        plistlib.dump(info, file)
    program = os.path.join(path, "Contents", "Linux", "Dormel")
    with open(program, "w", encoding="ascii") as file:
        file.write(f"#!/bin/sh\necho {version}\n")
    os.chmod(program, 0o755)


def tree(folder):
    found = {}
    for top, folders, files in os.walk(folder):
        for name in folders + files:
            path = os.path.join(top, name)
            mode = os.lstat(path).st_mode
            content = b""
            if stat.S_ISREG(mode):
                with open(path, "rb") as file:
                    content = file.read()
            found[os.path.relpath(path, folder)] = mode, content
    return found


class UpdateHelperTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = tempfile.mkdtemp(prefix="dormel-updates-")
        cls.addClassCleanup(shutil.rmtree, cls.work)
        cls.key, cls.other = os.path.join(cls.work, "key.pem"), os.path.join(cls.work, "other.pem")
        cls.public = tool("key", cls.key)
        tool("key", cls.other)
        cls.archives = {}
        for name, version, build, identifier in (("new", "1.1", "15", "test.bundle"), ("newer", "1.2", "16", "test.bundle"),
                                                 ("old", "0.9", "9", "test.bundle"), ("other", "1.1", "15", "another")):
            bundle = os.path.join(cls.work, name, "Dormel.app")
            make_bundle(bundle, version, build, cls.public, "https://example.org/feed.json", identifier)
            cls.archives[name] = tool("pack", bundle, "--key", cls.key, "--url", "https://example.org/",
                                      "--output", os.path.join(cls.work, name))

    def setUp(self):
        self.server = Server()
        self.addCleanup(self.server.server_close)
        self.addCleanup(self.server.shutdown)
        self.addCleanup(self.server.ended.set)
        self.applications = tempfile.mkdtemp(dir=self.work)
        self.bundle = os.path.join(self.applications, "It's Dormel.app")
        make_bundle(self.bundle, "1.0", "14", self.public, self.server.url + "/feed.json")
        os.makedirs(os.path.join(self.bundle, "Contents", "Helpers"))
        self.helper = os.path.join(self.bundle, "Contents", "Helpers", "update")
        shutil.copy(HELPER, self.helper)
        self.store = os.path.join(self.applications, ".It's Dormel.app.update")
        self.before = tree(self.bundle)

    def entry(self, name="new", version="1.1", build="15", key=None, archive=None):
        """Serves a feed with one archive. What the server has is what is asked for by /archive."""
        path = os.path.join(self.applications, "..", "served")
        with open(self.archives[name], "rb") as file:
            data = archive if archive is not None else file.read()
        with open(path, "wb") as file:
            file.write(data)
        feed = os.path.join(self.work, "feed.json")
        if os.path.exists(feed):
            os.remove(feed)
        tool("offer", path, "--key", key or self.key, "--url", self.server.url + "/archive", "--version", version,
             "--build", build, "--feed", feed)
        with open(feed, "rb") as file:
            self.server.answers = {"/feed.json": file.read(), "/archive": data}
        return data

    def run_helper(self, *arguments, prefix=()):
        """Every result, in order."""
        kept = {k: v for k, v in os.environ.items() if "proxy" not in k.lower()}
        done = subprocess.run([*prefix, self.helper, *arguments], capture_output=True, text=True, timeout=60, check=False,
                              env={**kept, "HOME": self.applications})
        self.complaint = done.stderr
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout.splitlines()

    def check(self, *arguments):
        return self.run_helper("check", "--fetch", "--idle", "1", *arguments)

    def assert_untouched(self):
        self.assertEqual(tree(self.bundle), self.before)
        self.assertFalse(os.path.lexists(self.store))

    def test_a_good_update_is_kept_and_put_in_place(self):
        self.entry()
        self.assertEqual(self.run_helper("check"), ["available 1.1"])
        self.assert_untouched()
        self.server.answers["/feed.json"], feed = lambda r: r.go_on("/moved"), self.server.answers["/feed.json"]
        self.server.answers["/moved"] = lambda r: r.go_on(self.server.url + "/here")
        self.server.answers["/here"] = feed
        self.assertEqual(self.check(), ["fetching 1.1", "ready 1.1"])
        self.assertEqual(tree(self.bundle), self.before)
        self.assertEqual(sorted(os.listdir(self.store)), ["archive", "update.json"])
        self.server.asked.clear()
        self.assertEqual(self.check(), ["ready 1.1"])
        self.assertNotIn("/archive", self.server.asked)
        # Its maker takes it back, and entries it again.
        feed, self.server.answers["/here"] = self.server.answers["/here"], b'{"format": 1, "updates": []}'
        self.assertEqual(self.check(), ["current"])
        self.assert_untouched()
        self.server.answers["/here"] = feed
        self.assertEqual(self.check()[-1], "ready 1.1")
        self.assertEqual(stat.S_IMODE(os.stat(self.store).st_mode), 0o700)
        # It is taken back in favour of a newer one that cannot be had, or that waits to be fetched by hand.
        self.entry("newer", "1.2", "16")
        self.server.answers["/archive"] = None
        self.assertEqual(self.check(), ["fetching 1.2", "not-fetched 1.2"])
        self.assert_untouched()
        self.entry()
        self.check()
        self.entry("newer", "1.2", "16")
        self.assertEqual(self.check(), ["fetching 1.2", "ready 1.2"])
        self.assertEqual(self.run_helper("install"), ["installed 1.2"])
        self.assertEqual(tree(self.bundle), tree(os.path.join(self.work, "newer", "Dormel.app")))
        self.assertEqual(os.listdir(self.applications), [os.path.basename(self.bundle)])

    def test_what_is_refused_leaves_everything_as_it_was(self):
        with open(self.archives["new"], "rb") as file:
            good = file.read()
        flipped = good[:-100] + bytes([good[-100] ^ 1]) + good[-99:]

        def answer(**answers):
            return lambda: (self.entry(), self.server.answers.update({"/" + k: v for k, v in answers.items()}))

        def feed(value):
            return lambda: (self.entry(), self.server.answers.update({"/feed.json": value}))

        cases = {
            "nothing newer": (lambda: self.entry(build="14"), ["current"]),
            "older": (lambda: self.entry("old", "0.9", "9"), ["current"]),
            "an empty feed": (feed(b'{"format": 1, "updates": []}'), ["current"]),
            "somebody else's key": (lambda: self.entry(key=self.other), ["fetching 1.1", "not-genuine 1.1"]),
            "tampered with": (answer(archive=flipped), ["fetching 1.1", "not-genuine 1.1"]),
            "cut off": (answer(archive=lambda r: r.give(good[:-1], len(good))), ["fetching 1.1", "not-fetched 1.1"]),
            "shorter": (answer(archive=good[:-1]), ["fetching 1.1", "not-fetched 1.1"]),
            "longer": (answer(archive=good + b"x"), ["fetching 1.1", "not-fetched 1.1"]),
            "gone": (answer(archive=None), ["fetching 1.1", "not-fetched 1.1"]),
            "slow": (answer(archive=lambda r: r.stall(good)), ["fetching 1.1", "not-fetched 1.1"]),
            "an old one under a new number": (lambda: self.entry("old"), ["fetching 1.1", "unsuitable 1.1"]),
            "another program": (lambda: self.entry("other"), ["fetching 1.1", "unsuitable 1.1"]),
            "no archive at all": (lambda: self.entry(archive=b"hello"), ["fetching 1.1", "unsuitable 1.1"]),
            "feed gone": (feed(None), ["unreachable"]),
            "feed too large": (feed(b'{"format": 1, "updates": []}' + b" " * 1024 * 1024), ["unreadable"]),
            "no feed": (feed(b"<html>"), ["unreadable"]),
            "a slow feed": (feed(lambda r: r.stall(b" " * 1000)), ["unreachable"]),
            "round and round": (feed(lambda r: r.go_on("/feed.json")), ["unreachable"]),
            "sent to somewhere plain": (feed(lambda r: r.go_on("http://192.0.2.1/feed.json")), ["unreachable"]),
            "sent to a file": (feed(lambda r: r.go_on("file:///etc/passwd")), ["unreachable"]),
        }
        for name, (arrange, results) in cases.items():
            with self.subTest(name):
                arrange()
                self.server.asked.clear()
                begun = time.monotonic()
                self.assertEqual(self.check(), results, self.complaint)
                self.assertLess(time.monotonic() - begun, 10)
                self.assertLessEqual(len(self.server.asked), 6)
                self.assert_untouched()
        self.server.answers["/feed.json"] = None
        self.server.shutdown()
        self.server.server_close()
        self.assertEqual(self.check(), ["unreachable"])

    def test_a_bundle_that_is_uninstalled_during_the_download(self):
        data = self.entry()

        def uninstall_half_way(request):
            request.give(data[:len(data) // 2], len(data))
            shutil.rmtree(self.bundle)
            request.wfile.write(data[len(data) // 2:])

        self.server.answers["/archive"] = uninstall_half_way
        self.assertEqual(self.check(), ["fetching 1.1", "nothing"])
        self.assertEqual(os.listdir(self.applications), [])

    def test_what_waits_is_verified_again(self):
        def tamper():
            with open(os.path.join(self.store, "archive"), "r+b") as file:
                file.write(b"x")

        def rename(**values):
            path = os.path.join(self.store, "update.json")
            with open(path, encoding="utf-8") as file:
                entry = json.load(file)
            with open(path, "w", encoding="utf-8") as file:
                json.dump({**entry, **values}, file)

        cases = {"tampered with": (tamper, ["not-genuine 1.1"]),
                 "renamed": (lambda: rename(build="99"), ["unsuitable 1.1"]),
                 "done already": (lambda: rename(build="14"), ["nothing"]),
                 "half of it": (lambda: os.remove(os.path.join(self.store, "archive")), ["not-genuine 1.1"]),
                 "the other half": (lambda: os.remove(os.path.join(self.store, "update.json")), ["nothing"])}
        for name, (damage, results) in cases.items():
            with self.subTest(name):
                self.entry()
                self.assertEqual(self.check()[-1], "ready 1.1", self.complaint)
                damage()
                self.assertEqual(self.run_helper("install"), results)
                self.assert_untouched()

    def test_a_store_that_somebody_else_made_is_not_used(self):
        elsewhere = tempfile.mkdtemp(dir=self.work)
        os.mkdir(os.path.join(elsewhere, "trial"))
        os.symlink(elsewhere, self.store)
        self.entry()
        self.assertEqual(self.check()[-1], "not-kept 1.1")
        self.assertEqual(os.listdir(elsewhere), ["trial"])
        self.assert_untouched()

    def test_a_bundle_of_the_administrators_is_left_alone(self):
        prefix = ()
        if os.geteuid() == 0:
            os.chmod(self.work, 0o755)
            os.chmod(self.applications, 0o755)
            prefix = ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups")
        else:
            os.chmod(self.applications, 0o555)
            self.addCleanup(os.chmod, self.applications, 0o755)
        self.entry()
        self.assertEqual(self.run_helper("check", "--fetch", prefix=prefix), ["administrator 1.1"])
        self.assert_untouched()

    def test_a_certificate_counts_when_the_system_vouches_for_it(self):
        self.entry()
        certificate = os.path.join(self.work, "certificate.pem")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=localhost", "-addext",
                        "subjectAltName=DNS:localhost", "-keyout", certificate + ".key", "-out", certificate],
                       check=True, capture_output=True)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, certificate + ".key")
        self.server.socket = context.wrap_socket(self.server.socket, server_side=True)
        self.server.handle_error = lambda *_: None
        make_bundle(self.bundle + "/x", "1.0", "14", self.public,
                    self.server.url.replace("http://127.0.0.1", "https://localhost") + "/feed.json")
        shutil.copy(self.bundle + "/x/Contents/Info.plist", self.bundle + "/Contents/Info.plist")
        self.assertEqual(self.check(), ["unreachable"])
        self.assertIn("certificate", self.complaint)
        self.assertEqual(self.server.asked, [])
        # Now somebody does, where other families of systems keep that.
        command = ["unshare", "--mount", *([] if os.getuid() == 0 else ["--map-root-user"])]
        if subprocess.run([*command, "true"], capture_output=True, check=False).returncode != 0:
            self.skipTest("this system makes no mount namespaces")
        script = """mount -t tmpfs none /etc && mkdir -p /etc/pki/tls/certs && cp "$0" /etc/pki/tls/certs/ca-bundle.crt &&
                    exec "$@" """
        self.assertEqual(self.run_helper("check", prefix=[*command, "sh", "-c", script, certificate]), ["available 1.1"])

    def test_without_a_key_nothing_is_asked(self):
        self.entry()
        make_bundle(self.bundle + "/x", "1.0", "14")
        shutil.copy(self.bundle + "/x/Contents/Info.plist", self.bundle + "/Contents/Info.plist")
        done = subprocess.run([self.helper, "check", "--fetch"], capture_output=True, check=False, timeout=60)
        self.assertEqual((done.returncode, done.stdout, self.server.asked), (78, b"", []))


if __name__ == "__main__":
    unittest.main()
