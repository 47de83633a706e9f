"""What a process is and costs, read from /proc."""

import os
import subprocess


class Running:
    """Base of those who run one process."""

    _process = None

    @property
    def pid(self):
        return self._process.pid

    def alive(self):
        return self._process is not None and self._process.poll() is None


def of_home(home_path):
    """Processes that live in the home folder, as {pid: command line as a list}."""
    wanted = f"HOME={home_path}".encode()
    found = {}
    for name in os.listdir("/proc"):
        if not name.isdigit():
            continue
        try:
            with open(f"/proc/{name}/environ", "rb") as file:
                if wanted not in file.read().split(b"\0"):
                    continue
            with open(f"/proc/{name}/cmdline", "rb") as file:
                command = [part.decode(errors="replace") for part in file.read().split(b"\0")[:-1]]
        except OSError:
            continue
        if command:
            found[int(name)] = command
    return found


def end(process, within=5):
    """Asks a child to end; one that does not is killed."""
    process.terminate()
    try:
        process.wait(within)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def alive(pid):
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as file:
            return file.read().rpartition(")")[2].split()[0] not in ("Z", "X")
    except OSError:
        return False


def tree(pid):
    """The process and all that descend from it."""
    children = {}
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat", encoding="utf-8", errors="replace") as file:
                    parent = int(file.read().rpartition(")")[2].split()[1])
            except OSError:
                continue
            children.setdefault(parent, []).append(int(name))
    found, left = [], [pid]
    while left:
        found.append(left.pop())
        left += children.get(found[-1], [])
    return found


def memory(pids):
    """(resident, proportional) kilobytes of the processes together."""
    resident = proportional = 0
    for pid in pids:
        try:
            with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
                for line in file:
                    if line.startswith("Rss:"):
                        resident += int(line.split()[1])
                    elif line.startswith("Pss:"):
                        proportional += int(line.split()[1])
        except OSError:
            continue
    return resident, proportional


def own_memory(pid):
    """Kilobytes that a process took for itself, its pictures included. Pages of files are left out: their share changes
    with whoever else maps the same libraries."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        return sum(int(line.split()[1]) for line in file if line.startswith(("Pss_Anon:", "Pss_Shmem:")))


def effort(pids):
    """{thread: (seconds of processor time, times woken up)} of the processes so far."""
    threads = {}
    for pid in pids:
        try:
            names = os.listdir(f"/proc/{pid}/task")
        except OSError:
            continue
        for name in names:
            try:
                with open(f"/proc/{pid}/task/{name}/schedstat", encoding="ascii") as file:
                    seconds = int(file.read().split()[0]) / 1e9
                with open(f"/proc/{pid}/task/{name}/status", encoding="utf-8") as file:
                    wakeups = next(int(line.split()[1]) for line in file if line.startswith("voluntary_ctxt_switches:"))
            except OSError:
                continue
            threads[int(name)] = seconds, wakeups
    return threads


def spent(before, after):
    """(seconds, wake-ups) between two efforts. What a thread did last that has ended in between is not in it."""
    return tuple(sum(now[i] - before.get(thread, (0.0, 0))[i] for thread, now in after.items()) for i in (0, 1))


def painter_of(pid):
    """The program that draws for the process; None while there is none."""
    for child in tree(pid)[1:]:
        try:
            with open(f"/proc/{child}/cmdline", "rb") as file:
                command = file.read().split(b"\0")
        except OSError:
            continue
        if any(os.path.basename(part) == b"paint" for part in command[:2]) and alive(child):
            return child
    return None
