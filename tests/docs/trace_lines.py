"""Holds docs/trace-lines.md against the sources: each line that is traced is told, at its level.

usage: trace_lines.py ROOT
"""

import pathlib
import re
import sys

LITERALS = r'((?:"(?:[^"\\]|\\.)*"\s*)+)'
CALL = re.compile(r'(?:CZE_TRACE\(|m_log->trace\()([^,]+),\s*' + LITERALS)
ROW = re.compile(r"^\| (\d) \| `(.*?)` \|", re.MULTILINE)

# Levels that the sources compute or name.
LEVELS = {"level": 6, "result == 0 ? 6 : 2": 6}


def traced(root):
    for folder in ("providers", "pdk"):
        for source in sorted((root / folder).rglob("*")):
            if source.suffix not in (".cpp", ".h"):
                continue
            for level, literals in CALL.findall(source.read_text()):
                text = "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', literals))
                yield LEVELS.get(level) or int(level), text


def main(root):
    in_sources = set(traced(root))
    page = (root / "docs/trace-lines.md").read_text()
    in_page = {(int(level), text) for level, text in ROW.findall(page)}
    for level, text in sorted(in_sources - in_page):
        print(f"docs/trace-lines.md does not tell of level {level}: {text}")
    for level, text in sorted(in_page - in_sources):
        print(f"docs/trace-lines.md tells of a line that is not traced, level {level}: {text}")
    return in_sources != in_page or len(in_sources) < 30


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
