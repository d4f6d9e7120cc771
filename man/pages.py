"""Makes a manual page: what `dmpclaim` says in its help takes the place of the lines {{...}}.

usage: pages.py COMMAND SCDOC PAGE.scd MANUAL

MANUAL is written, by way of scdoc.

    {{options SUBCOMMAND}}   options and arguments, as definitions
    {{list TITLE SUBCOMMAND}} the list below "TITLE:", such as Columns, as definitions
    {{text SUBCOMMAND}}      the paragraphs behind the options

SUBCOMMAND may be empty. So an option, a column, a code or a status is written down once, in the
command.
"""

import os
import re
import subprocess
import sys

TITLE = re.compile(r"^([A-Z][A-Za-z ]+):$")
OPTION = re.compile(r"^ {2,4}(\S.*?)(?: {2,}(\S.*))?$")
WORD = re.compile(r"^ {2,4}(\S+) +(\S.*)$")


def escaped(text):
    """Text without meaning to scdoc."""
    return re.sub(r"([\\*_#~<>`]|^-)", r"\\\1", text)


def sections(help_text):
    """The lines of the help by the title above them; "" for paragraphs of text."""
    found = {"": []}
    title = ""
    for line in help_text.splitlines():
        begins = TITLE.match(line)
        if begins:
            title = begins[1]
            found[title] = []
        elif line and not line.startswith(" ") and title:
            title = ""
            found[""].append(line)
        else:
            found[title].append(line)
    return found


def entries(lines, form):
    """Pairs of a term and its text, which may go on in lines that are indented further."""
    pairs = []
    for line in lines:
        begins = form.match(line)
        if begins:
            pairs.append([begins[1], begins[2] or ""])
        elif line.strip() and pairs:
            pairs[-1][1] = (pairs[-1][1] + " " + line.strip()).strip()
    return pairs


def definitions(lines, form):
    return "\n".join(f"*{escaped(term)}*\n\t{escaped(re.sub('  +', ': ', text))}\n"
                     for term, text in entries(lines, form))


def paragraphs(lines):
    """Text as text, and indented lists as definitions."""
    result = []
    for block in "\n".join(lines[2:]).strip("\n").split("\n\n"):
        if block.startswith("  "):
            result.append(definitions(block.splitlines(), WORD))
        elif not block.startswith("-J,"):  # where the general options are explained
            result.append("\n".join(escaped(line) for line in block.splitlines()) + "\n")
    return "\n".join(result)


class Help:
    def __init__(self, command):
        self.command = command

    def of(self, subcommand):
        words = [self.command] + subcommand.split() + ["--help"]
        text = subprocess.run(words, stdout=subprocess.PIPE, text=True, check=True,
                              env={**os.environ, "COLUMNS": "80"}).stdout
        return sections(text)

    def fill(self, directive):
        kind, *words = directive.split()
        if kind == "text":
            return paragraphs(self.of(" ".join(words))[""])
        if kind == "options":
            found = self.of(" ".join(words))
            return definitions(found.get("Positionals", []) + found["Options"], OPTION)
        if kind == "list":
            return definitions(self.of(" ".join(words[1:]))[words[0].replace("-", " ")], WORD)
        raise SystemExit(f"pages.py: {{{{{directive}}}}} is none of the directives")


def main(command, scdoc, page, manual):
    with open(page, encoding="utf-8") as source:
        text = re.sub(r"^\{\{(.*?)\}\}$", lambda found: Help(command).fill(found[1]),
                      source.read(), flags=re.MULTILINE)
    ended = subprocess.run([scdoc], input=text, stdout=subprocess.PIPE, text=True, check=True)
    with open(manual, "w", encoding="utf-8") as written:
        written.write(ended.stdout)


if __name__ == "__main__":
    main(*sys.argv[1:])
