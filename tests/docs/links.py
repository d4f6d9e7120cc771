"""Checks that the files which the documentation names are there.

usage: links.py ROOT PAGE...

A link's target, and each `word/with/a.slash` in backticks that begins with a folder of the tree,
names a file or a folder of it.
"""

import pathlib
import re
import sys


def named(text, folders):
    text = re.sub(r"```.*?```", "", text, flags=re.DOTALL)
    for target in re.findall(r"\]\(([^)#]+)[^)]*\)", text):
        if "://" not in target:
            yield target, True
    for word in re.findall(r"`([^`\s]+)`", text):
        first, slash, _ = word.partition("/")
        if slash and first in folders and re.fullmatch(r"[\w./-]+", word):
            yield word, False


def main(root, pages):
    folders = {entry.name for entry in root.iterdir() if entry.is_dir() and entry.name != "build"}
    missing = 0
    for page in pages:
        for name, is_link in named((root / page).read_text(), folders):
            base = (root / page).parent if is_link else root
            if not (base / name).exists():
                print(f"{page} names {name}, which does not exist")
                missing += 1
    return missing > 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]), sys.argv[2:]))
