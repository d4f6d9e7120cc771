"""Holds the JSON that dmpclaim prints against its schemas.

usage: schemas_test.py COMMAND SCHEMAS
"""

import copy
import json
import pathlib
import signal
import subprocess
import sys
import unittest

import jsonschema

from schemas import Schemas, rows

COMMAND, FOLDER = sys.argv[1:3]
SCHEMAS = Schemas(FOLDER)
load, check, elements = SCHEMAS.load, SCHEMAS.check, SCHEMAS.elements
PATHS = ["/dev/sda1", "/dev/mapper/mpathb", "/dev/mapper/a-b", "/dev/emcpowera", "x", b"/dev/sd\xff2"]

# Names that are warned of, and the codes of the warnings that need no device.
AMBIGUOUS = ["/dev/mapper/mpathap1", "/dev/mapper/mpathap12", "/dev/mapper/mpatha1", "x/dev/sda",
             "/dev/mapper/a-part1", "/dev/mapper/a-b", "/dev/sd1", "/dev/sdA", "/dev/sda01",
             "/dev/sda99999999999", "/dev/mapper/emcpowera/dev/emcpowera"]
NEEDS_A_DEVICE = {"leads-to-claimed-device"}


def run(*arguments):
    return subprocess.run([COMMAND, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          check=False).stdout


CASES = {"list": ["-O"], "show": ["-O", *PATHS], "strip": ["-O", *PATHS], "append": ["-O", "/dev/sda", "1"],
         "prefixes": ["-O"], "explain": PATHS, "active": ["-O", *PATHS], "paths": ["-O", "-a"]}


class Documents(unittest.TestCase):
    def test_they_are_schemas(self):
        for file in pathlib.Path(FOLDER).iterdir():
            jsonschema.Draft202012Validator.check_schema(json.loads(file.read_text()))

    def test_every_subcommand_prints_what_its_schema_says(self):
        for subcommand, arguments in CASES.items():
            with self.subTest(subcommand):
                document = json.loads(run(subcommand, "-J", *arguments))
                check(document, load(subcommand))
                known = set(elements(load(subcommand))["properties"])
                for row in rows(document):
                    self.assertEqual({key for key in row if not key.endswith("_raw")}, known)

    def test_a_line_is_an_element_of_the_array(self):
        for subcommand, arguments in CASES.items():
            with self.subTest(subcommand):
                for line in run(subcommand, "--json-lines", *arguments).splitlines():
                    check(json.loads(line), elements(load(subcommand)))

    def test_the_dry_run_has_a_document_of_its_own(self):
        check(json.loads(run("active", "--dry-run", "-J", *PATHS)), load("active-dry-run"))

    def test_doctor_prints_what_its_schema_says(self):
        check(json.loads(run("doctor", "-J")), load("doctor"))
        findings = load("doctor")["properties"]["findings"]["items"]
        for line in run("doctor", "--json-lines").splitlines():
            check(json.loads(line), findings)

    def test_codes_of_findings_are_those_that_doctor_lists(self):
        listed = [line.split()[0].decode() for line in run("doctor", "--codes").splitlines()]
        finding = load("doctor")["properties"]["findings"]["items"]
        self.assertEqual(finding["properties"]["code"]["enum"], listed)

    def test_codes_of_warnings_are_those_that_are_given(self):
        document = json.loads(run("explain", "-J", *AMBIGUOUS))
        given = {warning["code"] for row in rows(document) for warning in row["warnings"]}
        known = set(load("common")["$defs"]["warning"]["properties"]["code"]["enum"])
        self.assertEqual(given | NEEDS_A_DEVICE, known)

    def test_a_document_that_is_cut_short_is_one(self):
        with subprocess.Popen([COMMAND, "show", "-J", "-"], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as process:
            process.stdin.write(b"/dev/sda\n")
            process.stdin.flush()
            begin = process.stdout.readline()
            process.send_signal(signal.SIGINT)
            document = json.loads(begin + process.stdout.read())
        check(document, load("show"))
        self.assertTrue(document["interrupted"])

    def test_names_that_are_not_utf8_have_a_lossless_member(self):
        row = rows(json.loads(run("show", "-J", b"/dev/sd\xff2")))[0]
        self.assertEqual(row["name_raw"], "/dev/sd\\xff2")

    def test_other_documents_are_refused(self):
        good = json.loads(run("show", "-J", "/dev/sda"))
        for change in ({"schema": 2}, {"devices": {}}, {"other": 1}, {"interrupted": "yes"}):
            with self.assertRaises(jsonschema.ValidationError):
                check({**copy.deepcopy(good), **change}, load("show"))
        for change in ({"claim": "2"}, {"name": None}, {"other": 1}, {"disk": 1}):
            document = copy.deepcopy(good)
            document["devices"][0].update(change)
            with self.assertRaises(jsonschema.ValidationError):
                check(document, load("show"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
