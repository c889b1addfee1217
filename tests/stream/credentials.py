# SPDX-License-Identifier: MIT
"""Credentials as an administrator of NATS gives them out: an operator, accounts of his and their users, each known by a key
of Ed25519 and by a claim that the one above has signed."""

import base64
import json
import subprocess
import time

OPERATOR, ACCOUNT, USER, SEED = 14 << 3, 0, 20 << 3, 18 << 3
NO_LIMITS = {"subs": -1, "data": -1, "payload": -1}
ACCOUNT_LIMITS = {**NO_LIMITS, "imports": -1, "exports": -1, "wildcards": True, "conn": -1, "leaf": -1}
STREAM_LIMITS = {"mem_storage": -1, "disk_storage": -1, "streams": -1, "consumer": -1}


def _with_checksum(content):
    """Content with a CRC-16 (XMODEM) behind it, as text."""
    crc = 0
    for byte in content:
        crc ^= byte << 8
        for _ in range(8):
            crc = (crc << 1 ^ 0x1021 if crc & 0x8000 else crc << 1) & 0xFFFF
    return base64.b32encode(content + crc.to_bytes(2, "little")).decode().rstrip("=")


def _part(content):
    return base64.urlsafe_b64encode(content).decode().rstrip("=")


class Key:
    """A key of one kind, in a file of a folder."""

    def __init__(self, folder, name, kind):
        self._file = folder / f"{name}.ed25519"
        self._openssl("genpkey", "-algorithm", "ed25519", "-out", self._file)
        secret = self._openssl("pkey", "-in", self._file, "-outform", "DER")[-32:]
        public = self._openssl("pkey", "-in", self._file, "-pubout", "-outform", "DER")[-32:]
        self.public = _with_checksum(bytes([kind]) + public)
        # Five bits say that it is a seed, eight what of.
        self.seed = _with_checksum(bytes([SEED | kind >> 5, (kind & 31) << 3]) + secret)

    @staticmethod
    def _openssl(*arguments):
        return subprocess.run(["openssl", *arguments], check=True, capture_output=True).stdout

    def claim(self, name, subject, kind, content, **more):
        """What this key says of another one."""
        head = {"typ": "JWT", "alg": "ed25519-nkey"}
        body = {"jti": name, "iat": int(time.time()) - 60, "iss": self.public, "name": name, "sub": subject.public,
                "nats": {**content, "type": kind, "version": 2}, **more}
        text = ".".join(_part(json.dumps(each).encode()) for each in (head, body))
        message = self._file.with_suffix(".message")
        message.write_text(text, encoding="ascii")
        return text + "." + _part(self._openssl("pkeyutl", "-sign", "-rawin", "-inkey", self._file, "-in", message))


class Authority:
    """An operator with an account whose users have credentials, and one for the servers themselves."""

    def __init__(self, folder):
        self._folder = folder
        self._operator = Key(folder, "operator", OPERATOR)
        self._account = Key(folder, "account", ACCOUNT)
        self._system = Key(folder, "system", ACCOUNT)

    def server_lines(self):
        """How a server comes to trust it."""
        operator = self._operator.claim("operator", self._operator, "operator", {})
        halls = self._operator.claim("halls", self._account, "account", {"limits": {**ACCOUNT_LIMITS, **STREAM_LIMITS}})
        system = self._operator.claim("system", self._system, "account", {"limits": ACCOUNT_LIMITS})
        return (f"operator: {operator}\nresolver: MEMORY\nsystem_account: {self._system.public}\n"
                f"resolver_preload: {{ {self._account.public}: {halls}, {self._system.public}: {system} }}")

    def credentials(self, name, key=None, **more):
        """A file for a user, with the key of another one if there is one."""
        user = Key(self._folder, name, USER)
        claim = self._account.claim(name, user, "user", NO_LIMITS, **more)
        file = self._folder / f"{name}.creds"
        file.write_text(f"-----BEGIN NATS USER JWT-----\n{claim}\n------END NATS USER JWT------\n\n"
                        f"-----BEGIN USER NKEY SEED-----\n{(key or user).seed}\n------END USER NKEY SEED------\n",
                        encoding="ascii")
        file.chmod(0o640)
        return file
