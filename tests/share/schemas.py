"""The schemas of dmpclaim's JSON.

usage: schemas.py FOLDER NAME [line] <JSON

Fails with a message when the document on standard input, or with "line" a line of --json-lines, is
not what FOLDER/NAME.schema.json says.
"""

import json
import pathlib
import sys

import jsonschema


def strict(schema):
    """The schema without room for members that it does not name, which a later version may add."""
    if isinstance(schema, list):
        return [strict(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    result = {key: strict(value) for key, value in schema.items()}
    if isinstance(result.get("properties"), dict) and "type" in result:
        result["additionalProperties"] = False
    return result


def rows(document):
    """What the document's array holds."""
    return next(value for value in document.values() if isinstance(value, list))


class Schemas:
    """The schemas in a folder, which refuse members that they do not name."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.common = strict(self.load("common"))

    def load(self, name):
        text = (self.folder / f"{name}.schema.json").read_text(encoding="utf-8")
        return json.loads(text, object_hook=self.with_members_of_all)

    def with_members_of_all(self, schema):
        """The schema with the members of those that its "allOf" refers to."""
        for base in map(self.definition, schema.pop("allOf", [])):
            for members in ("properties", "patternProperties"):
                schema[members] = {**base.get(members, {}), **schema.get(members, {})}
        return schema

    def definition(self, reference):
        return self.load("common")["$defs"][reference["$ref"].rsplit("/", 1)[1]]

    def check(self, document, schema):
        resolver = jsonschema.RefResolver("", {}, store={"common.schema.json": self.common})
        jsonschema.Draft202012Validator(strict(schema), resolver=resolver).validate(document)

    def elements(self, schema):
        """The schema of what the document's array holds, without its reference."""
        array = next(value for value in schema["properties"].values() if "items" in value)
        items = array["items"]
        if "$ref" in items:
            items = self.definition(items)
        return items


def main(folder, name, part="document"):
    schemas = Schemas(folder)
    schema = schemas.load(name)
    try:
        schemas.check(json.load(sys.stdin), schemas.elements(schema) if part == "line" else schema)
    except jsonschema.ValidationError as error:
        sys.exit(f"{name}: {error.json_path}: {error.message}")


if __name__ == "__main__":
    main(*sys.argv[1:])
