#!/usr/bin/env python3
"""Kills kalden at random moments of its saves and checks that nothing is lost.

Each command runs on the corundum example until it has been killed (SIGKILL) 50 times, at
moments spread over its whole run time. After every kill each file the command writes must be
whole: the old file or the new one, byte for byte. After each series the command runs to its
end, and a refinement of the project succeeds; at the end no temporary file is left.
Usage: kill_test.py KALDEN EXAMPLE_DIR
"""
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

KILLS = 50
MOST_TRIES = 10 * KILLS


def run(kalden, folder, *args):
    return subprocess.run([kalden, *args], cwd=folder, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode


def read(path):
    with open(path, 'rb') as f:
        return f.read()


def write(path, data):
    with open(path, 'wb') as f:
        f.write(data)


class Series:
    """One command: `prepare` puts the old files in place, `outputs` are the files it writes."""

    def __init__(self, name, args, prepare, outputs):
        self.name, self.args, self.prepare, self.outputs = name, args, prepare, outputs


def check_series(kalden, folder, series, failures):
    series.prepare()
    old = {f: read(os.path.join(folder, f)) for f in series.outputs}
    started = time.monotonic()
    if run(kalden, folder, *series.args) != 0:
        failures.append(f'{series.name}: does not run to its end')
        return
    duration = time.monotonic() - started
    new = {f: read(os.path.join(folder, f)) for f in series.outputs}
    kills = 0
    # A try whose command ended before the kill narrows the window, so that a first run slower
    # than the rest (cold caches, a loaded machine) cannot leave the series short of kills.
    window = duration
    for _ in range(MOST_TRIES):
        if kills == KILLS:
            break
        series.prepare()
        process = subprocess.Popen([kalden, *series.args], cwd=folder,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(random.uniform(0, window))
        process.send_signal(signal.SIGKILL)
        if process.wait() == -signal.SIGKILL:
            kills += 1
        else:
            window *= 0.8
        for f in series.outputs:
            now = read(os.path.join(folder, f))
            if now not in (old[f], new[f]):
                failures.append(f'{series.name}: {f} is neither the old nor the new file '
                                f'({len(now)} bytes) after a kill')
                return
    if kills < KILLS:
        failures.append(f'{series.name}: only {kills} kills in {MOST_TRIES} tries')
    # Whole again: the command and a following refinement run to their ends.
    series.prepare()
    if run(kalden, folder, *series.args) != 0:
        failures.append(f'{series.name}: fails after the kills')
    if run(kalden, folder, 'run', 'corundum.rec') != 0:
        failures.append(f'{series.name}: the run after the kills fails')
    print(f'{series.name}: {kills} kills, {duration * 1000:.0f} ms a run', flush=True)


def main():
    kalden, example = sys.argv[1], sys.argv[2]
    random.seed(19)
    failures = []
    with tempfile.TemporaryDirectory(prefix='kaldena-kill-') as folder:
        for name in ('corundum.rec', 'corundum.xy'):
            shutil.copy(os.path.join(example, name), folder)
        path = lambda name: os.path.join(folder, name)
        project = read(path('corundum.rec'))
        if run(kalden, folder, 'run', 'corundum.rec') != 0 or \
                run(kalden, folder, 'fourier', 'corundum.rec') != 0:
            sys.exit('the example does not refine')
        refined = read(path('%corundum.par'))
        engine_outputs = ['%corundum.par', '%corundum.out', '%corundum.sum', '%corundum.fou']
        stale = {f: b'old ' + f.encode() + b'\n' for f in engine_outputs}

        def files(**contents):
            def prepare():
                for name, data in contents.items():
                    write(path(name.replace('_', '.')), data)
            return prepare

        def before_run():
            write(path('corundum.rec'), project)
            for name, data in stale.items():
                write(path(name), data)

        series = [
            Series('run', ['run', 'corundum.rec'], before_run, engine_outputs),
            Series('update', ['update', 'corundum.rec'],
                   files(corundum_rec=project, **{'%corundum_par': refined}), ['corundum.rec']),
            Series('backup', ['backup', 'corundum.rec'],
                   files(corundum_rec=project, corundum_par=refined, corundum_bck=project),
                   ['corundum.bck']),
            Series('restore', ['restore', 'corundum.rec'],
                   files(corundum_rec=project, corundum_par=project, corundum_bck=refined),
                   ['corundum.par']),
            Series('add-peaks', ['add-peaks', 'corundum.rec'],
                   files(corundum_rec=project, corundum_dis=b'old list\n'),
                   ['corundum.rec', 'corundum.dis']),
            Series('record rewrite', ['crystallinity', 'corundum.rec'],
                   files(corundum_rec=project), ['corundum.rec']),
        ]
        for s in series:
            check_series(kalden, folder, s, failures)
        left = [f for f in os.listdir(folder) if f.endswith('.tmp')]
        if left:
            failures.append(f'temporary files left behind: {left}')
    for failure in failures:
        print(failure)
    sys.exit(1 if failures else 0)


if __name__ == '__main__':
    main()
