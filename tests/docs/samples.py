"""Runs the samples of the documentation and compares what they print.

usage: samples.py COMMAND PAGE...

A sample is a line "$ dmpclaim ..." of a ```console block, and the lines below it up to the next
line with "$". COMMAND is the dmpclaim that is run, in a shell. A ```console example block shows what
another machine has, and is not run.
"""

import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

BLOCK = re.compile(r"^```console\n(.*?)^```$", re.DOTALL | re.MULTILINE)


def samples(text):
    for block in BLOCK.findall(text):
        for sample in re.split(r"^(?=\$ )", block, flags=re.MULTILINE):
            command, _, output = sample.partition("\n")
            if command.startswith("$ dmpclaim "):
                yield command[2:], output


def main(command, pages):
    run = wrong = 0
    with tempfile.TemporaryDirectory() as folder:
        os.symlink(os.path.abspath(command), f"{folder}/dmpclaim")
        environment = {"PATH": f"{folder}:/usr/bin:/bin"}
        for page in pages:
            for line, expected in samples(pathlib.Path(page).read_text()):
                ended = subprocess.run(line, shell=True, env=environment, text=True,
                                       stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                run += 1
                if ended.stdout != expected:
                    wrong += 1
                    print(f"{page}: $ {line}")
                    print("\n".join(difflib.unified_diff(expected.splitlines(),
                                                         ended.stdout.splitlines(),
                                                         "page", "command", lineterm="")))
    print(f"{run} samples, {wrong} wrong")
    return run == 0 or wrong > 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:]))
