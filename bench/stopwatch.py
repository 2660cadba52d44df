"""Runs the timing programs of bench/measure and counts syncs."""

import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass


@dataclass
class Timing:
    times: list  # milliseconds, in the order of the runs
    memory: int  # KiB, the maximum of all runs

    @property
    def median(self):
        return statistics.median(self.times)

    @property
    def p99(self):
        return sorted(self.times)[len(self.times) * 99 // 100]

    @property
    def mean(self):
        return statistics.fmean(self.times)


class Stopwatch:
    def __init__(self, build, budget):
        self.build = build
        self.budget = budget  # seconds per row

    def processes(self, commands, environment, most=400):
        """Times the commands in turn, in as many rounds as the budget allows."""
        watch = self.build / "bench" / "bench_pairs"
        return self._timed(lambda rounds: [watch, rounds], commands, environment, 7, most)

    def once(self, command, environment):
        return self._run([self.build / "bench" / "bench_pairs", 1], [command], environment)[0]

    def unraised(self, command, environment):
        """Milliseconds at normal priority. At real-time priority, a command that writes much data
        would block the kernel's writeback threads."""
        start = time.perf_counter()
        subprocess.run([str(part) for part in command], env=environment, check=True,
                       stdout=subprocess.DEVNULL, stdin=subprocess.DEVNULL)
        return (time.perf_counter() - start) * 1000

    def requests(self, request, servers, environment, most=1000):
        """Times one request to each of the servers in turn."""
        with tempfile.NamedTemporaryFile("w", suffix=".jsonl") as file:
            file.write(request + "\n")
            file.flush()
            watch = self.build / "bench" / "bench_round_trips"
            return self._timed(
                lambda rounds: [watch, file.name, rounds, 0], servers, environment, 7, most
            )

    def conversation(self, requests, server, environment, rounds=1, pause=0):
        """Times each of the requests to one server, all of them `rounds` times, each after `pause` to
        twice as many milliseconds. To measure memory, send few requests: the memory of the timing
        program counts when it starts the server.
        """
        with tempfile.NamedTemporaryFile("w", suffix=".jsonl") as file:
            file.writelines(request + "\n" for request in requests)
            file.flush()
            watch = self.build / "bench" / "bench_round_trips"
            return self._run([watch, file.name, rounds, pause], [server], environment)[0]

    def _timed(self, watch, commands, environment, least, most):
        # The first rounds warm the page cache and show how long a round takes.
        trial = self._run(watch(2), commands, environment)
        round_ms = sum(min(timing.times) for timing in trial)
        rounds = int(max(least, min(most, self.budget * 1000 / round_ms)))
        return self._run(watch(rounds), commands, environment)

    def _run(self, watch, commands, environment):
        arguments = [str(part) for part in watch]
        for command in commands:
            arguments += ["--", *(str(part) for part in command)]
        lines = subprocess.run(
            arguments, env=environment, check=True, capture_output=True, text=True
        ).stdout.splitlines()
        timings = []
        for line in lines:
            memory, *times = map(int, line.split())
            timings.append(Timing([time / 1e6 for time in times], memory))
        return timings


def can_raise_priority():
    """Whether the timing programs may run at real-time priority."""
    child = "import os; os.sched_setscheduler(0, os.SCHED_FIFO, os.sched_param(1))"
    return subprocess.run([sys.executable, "-c", child], capture_output=True).returncode == 0


def syncs(command, environment):
    """The number of sync calls of the command; None if they cannot be counted."""
    if shutil.which("strace") is None:
        return None
    with tempfile.NamedTemporaryFile("r", suffix=".strace") as file:
        calls = "trace=fsync,fdatasync,sync_file_range,syncfs,sync,msync"
        trace = ["strace", "-f", "-e", calls, "-o", file.name]
        subprocess.run(
            [*trace, *map(str, command)],
            env=environment, check=True, stdout=subprocess.DEVNULL, stdin=subprocess.DEVNULL,
        )
        return len(re.findall(r"(?:sync|sync_file_range|syncfs)\(.*= 0$", file.read(), re.M))
