"""A real CIM server, and programs beside it, for tests of Docs/beside-a-cim-server.md."""

import contextlib
import os
import shutil
import socket
import subprocess
import time
import unittest

import Environment

USER = "root"
PASSWORD = "cim-secret"
# So long that only what never comes is missed.
_PATIENCE = 300


def needCimServer():
    """Skips the test where there is no real CIM server."""
    if not Environment.CIM_SERVER:
        raise unittest.SkipTest("CIM_SERVER_DIR is not set")


def freePort():
    """A port of 127.0.0.1 that nobody uses at the moment."""
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


@contextlib.contextmanager
def running(command, port, directory, log):
    """A program while it runs, from when it listens on the port of 127.0.0.1. The file `log` gets what
    it writes."""
    path = os.path.join(directory, log)

    def expectRunning(program):
        if program.poll() is not None:
            with open(path, encoding="utf-8", errors="replace") as file:
                raise AssertionError(f"{command[0]} ended with {program.returncode}:\n{file.read()}")

    with open(path, "w", encoding="utf-8") as output:
        program = subprocess.Popen(command, cwd=directory, stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=subprocess.STDOUT)
    try:
        deadline = time.monotonic() + _PATIENCE
        while not _accepts(port):
            expectRunning(program)
            if time.monotonic() > deadline:
                raise AssertionError(f"{command[0]} does not listen on port {port}")
            time.sleep(0.01)
        yield
        expectRunning(program)
    finally:
        program.terminate()
        program.wait()


def _accepts(port):
    with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", port)):
        return True
    return False


@contextlib.contextmanager
def cimServer(port, directory):
    """The server, which demands USER and PASSWORD."""
    folder = os.path.join(directory, "cim_server")
    os.mkdir(folder)
    command = [os.path.join(Environment.CIM_SERVER, "start"), "--port", str(port), "--authenticate",
               "--folder", folder]
    try:
        with running(command, port, directory, "cim_server.log"):
            yield
    finally:
        shutil.rmtree(folder, ignore_errors=True)
