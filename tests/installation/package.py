#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks what the Debian package does to a machine: its scripts, the user of its services, and their units.

Usage: package.py FILES CONTROL

FILES is a folder with the package's files, CONTROL one with its scripts (dpkg-deb -x, dpkg-deb -e). The scripts run
against a machine of their own, whose programs only write down how they are called: no right of root is needed, nor a
service manager.
"""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

USER = "kelreader"
HOME = "/var/lib/kelreader"

# What each unit has to say. A line that may stand there several times has all its values.
BOTH = {
    "Type": ["notify"],
    "User": [USER],
    "Group": [USER],
    "UMask": ["0007"],
    "StateDirectory": ["kelreader"],
    "StateDirectoryMode": ["0750"],
    "WatchdogSec": ["60"],
    "Restart": ["on-failure"],
    "RestartPreventExitStatus": ["2"],
    "NoNewPrivileges": ["yes"],
    "ProtectSystem": ["strict"],
    "ProtectHome": ["yes"],
    "PrivateTmp": ["yes"],
    "ProtectControlGroups": ["yes"],
    "ProtectHostname": ["yes"],
    "ProtectKernelLogs": ["yes"],
    "ProtectKernelModules": ["yes"],
    "ProtectKernelTunables": ["yes"],
    "ProtectProc": ["invisible"],
    "RestrictAddressFamilies": ["AF_UNIX AF_INET AF_INET6"],
    "RestrictNamespaces": ["yes"],
    "RestrictRealtime": ["yes"],
    "RestrictSUIDSGID": ["yes"],
    "LockPersonality": ["yes"],
    "SystemCallArchitectures": ["native"],
    "SystemCallFilter": ["@system-service"],
    "CapabilityBoundingSet": [""],
    "WantedBy": ["multi-user.target"],
}
UNITS = {
    "kelreader-station@.service": {
        "ExecStart": ["/usr/bin/kelreader station /etc/kelreader/%i.json"],
        "ExecReload": ["/bin/kill -HUP $MAINPID"],
        "SupplementaryGroups": ["dialout"],
        "DevicePolicy": ["closed"],
        "DeviceAllow": [
            "char-ttyS rw",
            "char-ttyUSB rw",
            "char-ttyACM rw",
            "char-usb_device rw",
            "char-pts rw",
            "/dev/ptmx rw",
        ],
        "PrivateDevices": None,  # it would take the serial lines away
        "Environment": [f"KELREADER_REGISTRY_DIR={HOME}/settings"],
    },
    "kelreader-collect@.service": {
        "ExecStart": ["/usr/bin/kelreader collect"],
        "EnvironmentFile": ["/etc/kelreader/%i.env"],
        "SupplementaryGroups": None,
        "PrivateDevices": ["yes"],
        "Environment": [
            f"KELREADER_STORE={HOME}/%i.db",
            "KELREADER_DURABLE=%i",
            f"KELREADER_REGISTRY_DIR={HOME}/settings",
        ],
    },
}
SYSUSERS = [f'u {USER} - "Stations of optical mark readers" {HOME}', f"m {USER} dialout"]
ADDED = (
    f"useradd --system --user-group --groups dialout --home-dir {HOME} --no-create-home"
    f" --shell /usr/sbin/nologin --comment Stations of optical mark readers {USER}"
)
FOLDERS = ["install -d -m 755 /etc/kelreader", f"install -d -m 750 -o {USER} -g {USER} {HOME}"]
STOPPED = "systemctl stop kelreader-station@* kelreader-collect@*"
NEEDED = ["systemctl daemon-reload", "systemctl try-restart kelreader-station@* kelreader-collect@*"]


def settings_of(unit):
    settings = {}
    for line in unit.read_text(encoding="utf-8").splitlines():
        name, sign, value = line.partition("=")
        if sign and not line.startswith("#"):
            settings.setdefault(name, []).append(value)
    return settings


def faults_of_units(files):
    folder = files / "usr/lib/systemd/system"
    for name, own in UNITS.items():
        if not (folder / name).is_file():
            yield f"the unit {name} is missing"
            continue
        settings = settings_of(folder / name)
        for key, values in (BOTH | own).items():
            if settings.get(key) != values:
                yield f"{name}: {key} is {settings.get(key)}, and has to be {values}"
        program = settings.get("ExecStart", [""])[0].split(" ")[0]
        if not os.access(files / program[1:], os.X_OK):
            yield f"{name}: {program} is no program of the package"
        if (folder / name).stat().st_mode & 0o777 != 0o644:
            yield f"{name} is not readable for all, or writable for others than root"


def faults_of_files(files):
    users = files / "usr/lib/sysusers.d/kelreader.conf"
    lines = users.read_text(encoding="utf-8").splitlines() if users.is_file() else []
    if [line for line in lines if not line.startswith("#")] != SYSUSERS:
        yield f"the user of the stations is made from {lines}"
    # Which USB device is a reader its administrator knows; the package takes none away from anybody.
    for path in files.rglob("*"):
        if "udev" in path.relative_to(files).parts:
            yield f"the package has {path.relative_to(files)}, a rule of udev"
        if path.is_relative_to(files / "etc") and path.is_file():
            yield f"the package has {path.relative_to(files)}, which it would take back on an update"


class Machine:
    """A machine whose programs write down how they are called, with systemd or without."""

    MANAGER = "/run/systemd/system"

    def __init__(self, folder, programs, has_user, has_systemd):
        self.manager = folder / "systemd"
        if has_systemd:
            self.manager.mkdir()
        self.log = folder / "log"
        self.log.touch()
        self.path = folder / "bin"
        self.path.mkdir()
        for program in programs:
            status = 0 if program != "getent" or has_user else 2
            script = self.path / program
            script.write_text(f'#!/bin/sh\necho "{program} $*" >>"{self.log}"\nexit {status}\n', encoding="utf-8")
            script.chmod(0o755)

    def run(self, script, *arguments):
        """The status of a script, and what it has called."""
        text = script.read_text(encoding="utf-8").replace(self.MANAGER, str(self.manager))
        command = ["/bin/sh", "-c", text, script.name, *arguments]
        done = subprocess.run(command, env={"PATH": str(self.path)}, check=False)
        return done.returncode, self.log.read_text(encoding="utf-8").splitlines()


def faults_of_script(script, arguments, programs, has_user, has_systemd, calls):
    with tempfile.TemporaryDirectory() as folder:
        status, found = Machine(Path(folder), programs, has_user, has_systemd).run(script, *arguments)
    if (status, found) != (0, calls):
        yield f"{script.name} {' '.join(arguments)} ended with {status} and called {found}, and not {calls}"


def faults_of_scripts(control):
    usual = ["getent", "useradd", "install", "systemctl"]
    users = [
        (["systemd-sysusers", *usual], False, ["systemd-sysusers kelreader.conf"]),
        (usual, False, [f"getent passwd {USER}", ADDED]),
        (usual, True, [f"getent passwd {USER}"]),
    ]
    for has_systemd in (False, True):
        for programs, has_user, user in users:
            calls = [*user, *FOLDERS, *(NEEDED if has_systemd else [])]
            yield from faults_of_script(control / "postinst", ["configure"], programs, has_user, has_systemd, calls)
        stopped = [STOPPED] if has_systemd else []
        yield from faults_of_script(control / "prerm", ["remove"], usual, True, has_systemd, stopped)
        for script, arguments in (("postinst", ["abort-upgrade", "8.0"]), ("prerm", ["upgrade", "8.2"])):
            yield from faults_of_script(control / script, arguments, usual, True, has_systemd, [])


def main():
    files, control = Path(sys.argv[1]), Path(sys.argv[2])
    found = [*faults_of_units(files), *faults_of_files(files), *faults_of_scripts(control)]
    if found:
        sys.exit("package.py:\n  " + "\n  ".join(found))


if __name__ == "__main__":
    main()
