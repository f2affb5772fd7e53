#!/usr/bin/env python3
"""The tool at a console of Windows: Ctrl-C, typed there, ends it in its own way.

  console.py wine TOOL"""
import errno
import os
import pty
import re
import select
import signal
import sys
import time

PATIENCE = 120  # seconds, for a machine that does much else


class Terminal:
    def __init__(self, command):
        self.said = b""
        self.process, self.end = pty.fork()
        if self.process == 0:
            os.execvp(command[0], command)

    def type(self, text):
        os.write(self.end, text)

    def listen(self, seconds, condition):
        """Reads until the condition holds; False when it does not in that time."""
        end = time.monotonic() + seconds
        while not condition():
            ready, _, _ = select.select([self.end], [], [], max(0, end - time.monotonic()))
            if not ready:
                return False
            try:
                more = os.read(self.end, 4096)
            except OSError as error:
                if error.errno != errno.EIO:  # the other side has ended
                    raise
                more = b""
            if not more:
                return condition()
            self.said += more
        return True

    def status(self):
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])


failed = 0


def check(name, good, why=""):
    global failed
    failed += not good
    print(("ok - " if good else "not ok - ") + name + ("" if good else f": {why}"), flush=True)


# Windows shows a line when it is read: between the escapes of its console, it says that the tool
# runs and reads. Before that the terminal alone may have shown it.
terminal = Terminal([*sys.argv[1:], "convert", "--builtin", "--grey"])
terminal.type(b"200 100 50\r")
read = terminal.listen(PATIENCE, lambda: re.search(rb"\x1b\[[^A-Za-z]*[A-Za-z]200 100 50", terminal.said))
check("a command reads lines from a console", read, terminal.said)
terminal.type(b"\x03")
ended = terminal.listen(PATIENCE, lambda: b"kolink: interrupted" in terminal.said)
check("Ctrl-C at a console says so in a line", ended, terminal.said)
if not ended:
    os.kill(terminal.process, signal.SIGKILL)
status = terminal.status()
check("Ctrl-C at a console ends with 130", status == 130, status)
sys.exit(1 if failed else 0)
