"""Ways from a program to an X server: forwarders and ssh."""

import os
import shutil
import socket
import subprocess
import threading
import time
from contextlib import contextmanager, suppress
from pathlib import Path

from processes import Missing, await_file, children_of, end_group, kill, kill_descendants, spawn, without_display
from servers import free_number, socket_of
from support.waiting import wait_until

SSHD = "/usr/sbin/sshd"


# ---- A forwarder that the X server takes for ssh ----


class Forwarder:
    def __init__(self, process, name):
        self._process = process
        self.environment = without_display() | {"DISPLAY": name, "SDL_VIDEODRIVER": "x11"}

    def kill(self):
        end_group(self._process)


@contextmanager
def forwarder(server, folder):
    """The X server judges a client by its program's name, and shares no memory with one that is called ssh."""
    program = shutil.copy(_need("socat"), folder / "ssh")
    with free_number() as name:
        path = socket_of(name)
        process = spawn([program, f"UNIX-LISTEN:{path},fork,backlog=64", f"UNIX-CONNECT:{socket_of(server.name)}"])
        try:
            await_file(path, process, "the forwarder")
            yield Forwarder(process, name)
        finally:
            end_group(process)


def _need(program):
    path = shutil.which(program)
    if not path:
        raise Missing(f"no {program} here")
    return path


# ---- A forwarder that delays, stalls or cuts ----


# A line carries bytes only, no descriptors, which clients of these extensions send if the server offers them.
WITHOUT_DESCRIPTORS = ["-extension", "MIT-SHM", "-extension", "DRI3"]


class PoorLine:
    """Forwards between clients and an X server. `delay` holds up each piece, in seconds. `limit` is what is still let
    through from the server, in bytes (None: all); after it the line stalls or, with `cuts`, breaks."""

    def __init__(self, server, path, name):
        self.environment = without_display() | {"DISPLAY": name, "SDL_VIDEODRIVER": "x11"}
        self.delay = 0.0
        self.limit = None
        self.cuts = False
        self._target = str(socket_of(server.name))
        self._sockets = []
        self._listener = socket.socket(socket.AF_UNIX)
        self._listener.bind(str(path))
        self._listener.listen(16)
        self._start(self._accept)

    def close(self):
        for end in [self._listener, *self._sockets]:
            self._break(end)

    def _start(self, *call):
        threading.Thread(target=call[0], args=call[1:], daemon=True).start()

    def _break(self, end):
        try:
            end.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass

    def _accept(self):
        while True:
            try:
                client, _ = self._listener.accept()
            except OSError:
                return
            server = socket.socket(socket.AF_UNIX)
            server.connect(self._target)
            self._sockets += [client, server]
            self._start(self._carry, client, server, False)
            self._start(self._carry, server, client, True)

    def _carry(self, source, target, is_reply):
        try:
            while piece := source.recv(4096 if is_reply else 65536):
                time.sleep(self.delay)
                if is_reply and self.limit is not None:
                    piece, self.limit = piece[:self.limit], max(0, self.limit - len(piece))
                target.sendall(piece)
                if is_reply and self.limit == 0:
                    if not self.cuts:
                        return
                    break
        except OSError:
            pass
        self._break(source)
        self._break(target)


@contextmanager
def poor_line(server):
    with free_number() as name:
        line = PoorLine(server, socket_of(name), name)
        try:
            yield line
        finally:
            line.close()


# ---- ssh ----


class Ssh:
    """An sshd of our own on the loopback interface, and clients of it whose X server is `server`."""

    def __init__(self, folder, server):
        self._folder = folder
        self.server = server
        self.port = _free_port()
        for name in ("host_key", "user_key"):
            subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", folder / name], check=True)
        shutil.copy(folder / "user_key.pub", folder / "authorized_keys")
        (folder / "sshd_config").write_text(self._configuration())
        if os.getuid() == 0:
            os.makedirs("/run/sshd", exist_ok=True)  # where sshd locks its unprivileged half in
        self.daemon = spawn([SSHD, "-D", "-e", "-f", folder / "sshd_config"], without_display(),
                            stderr=open(folder / "sshd.log", "w"))
        self.carriers = []

    def _configuration(self):
        folder = self._folder
        return (f"ListenAddress 127.0.0.1\nPort {self.port}\nHostKey {folder}/host_key\nPidFile none\n"
                f"AuthorizedKeysFile {folder}/authorized_keys\nStrictModes no\nUsePAM no\nX11Forwarding yes\n"
                f"PermitRootLogin prohibit-password\nSetEnv XAUTHORITY={folder}/far_cookies\n")

    def is_ready(self):
        with socket.socket() as client:
            return client.connect_ex(("127.0.0.1", self.port)) == 0

    def command(self, trusted):
        """What precedes the shell command that shall run at the other end."""
        options = {"UserKnownHostsFile": "/dev/null", "StrictHostKeyChecking": "no", "LogLevel": "ERROR",
                   "ForwardX11": "yes", "ForwardX11Trusted": "yes" if trusted else "no", "ForwardX11Timeout": "0"}
        given = [word for key, value in options.items() for word in ("-o", f"{key}={value}")]
        return ["ssh", "-F", "none", "-i", self._folder / "user_key", "-p", self.port, *given, "127.0.0.1"]

    def cut_far_end(self):
        """Kills the processes of sshd that carry the connection; the programs that they started live on."""
        for process in _sessions(self.daemon.pid):
            kill(process)

    def close(self):
        kill_descendants(self.daemon.pid)
        end_group(self.daemon)


def _sessions(daemon):
    """The descendants of the daemon that are sshd themselves."""
    found = []
    for child in children_of(daemon):
        with suppress(FileNotFoundError, ProcessLookupError):
            if Path(f"/proc/{child}/comm").read_text().strip() == "sshd":
                found += [*_sessions(child), child]
    return found


@contextmanager
def ssh(folder, server):
    for program in (SSHD, "ssh", "ssh-keygen", "xauth"):
        _need(program)
    connection = Ssh(folder, server)
    try:
        if not wait_until(lambda: connection.is_ready() or connection.daemon.poll() is not None):
            raise Missing("sshd is not ready")
        yield connection
    finally:
        connection.close()


def _free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


# ---- Cookies ----


def make_cookies(path, name, key="0123456789abcdef0123456789abcdef"):
    """Writes a file of cookies for the display. A server that starts with it demands that cookie."""
    _need("xauth")
    subprocess.run(["xauth", "-q", "-f", path, "add", name, "MIT-MAGIC-COOKIE-1", key], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
