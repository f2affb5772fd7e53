"""Runs the tool as a process that signals, limits and other processes act upon.

  process.py signal SIGNAL WHEN TOOL ARGUMENTS...  starts the tool, sends it the signal, prints the
                                        exit status. WHEN: "says TEXT", as soon as standard error
                                        has that, or "makes FOLDER", once a file is made there.
  process.py hold GUARD COMMAND...      runs the command while a stopped process holds the guard;
                                        HOLDER in its arguments becomes that process's number.
  process.py peak KIB TOOL ARGUMENTS... runs the tool; fails when it took more memory than that.
"""
import os
import resource
import signal
import subprocess
import sys
import time

PATIENCE = 120  # seconds, for a machine that does much else


def wait_for(condition, process):
    end = time.monotonic() + PATIENCE
    while not condition():
        if process.poll() is not None or time.monotonic() > end:
            return False
        time.sleep(0.01)
    return True


def send_signal(name, when, *command):
    # A shell's background job ignores what Ctrl-C sends; the tool would leave it so.
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.SIG_DFL)
    with open("said", "w+b") as said:
        process = subprocess.Popen(command, stderr=said, stdout=subprocess.DEVNULL)
        what, text = when.split(" ", 1)
        if what == "says":
            ready = lambda: text.encode() in open("said", "rb").read()
        else:
            ready = lambda: any(name.startswith("~kolink-") for name in os.listdir(text))
        reached = wait_for(ready, process)
        process.send_signal(getattr(signal, name))
        process.wait(PATIENCE)
    print(process.returncode if reached else f"{process.returncode} before it {when}")


def hold(guard, *command):
    # What the guard's file holds is the holder's number, as the library writes it.
    holder = subprocess.Popen([sys.executable, "-c", """
import fcntl, os, signal, sys
guard = os.open(sys.argv[1], os.O_RDWR)
fcntl.flock(guard, fcntl.LOCK_EX)
os.pwrite(guard, b"%-11d\\n" % os.getpid(), 0)
print("held", flush=True)
os.kill(os.getpid(), signal.SIGSTOP)
""", guard], stdout=subprocess.PIPE)
    try:
        assert holder.stdout.readline() == b"held\n"
        command = [argument.replace("HOLDER", str(holder.pid)) for argument in command]
        return subprocess.call(command)
    finally:
        holder.kill()
        holder.wait()


def peak(limit, *command):
    status = subprocess.call(command)
    taken = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
    if taken > int(limit):
        print(f"{taken} KiB")
        return 99
    return status


actions = {"signal": send_signal, "hold": hold, "peak": peak}
sys.exit(actions[sys.argv[1]](*sys.argv[2:]))
