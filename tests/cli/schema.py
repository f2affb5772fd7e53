#!/usr/bin/env python3
"""Whether a JSON document keeps a schema, for the keywords that ours use.

    schema.py SCHEMA DOCUMENT       says the first place that does not, and ends with status 1
"""
import json
import sys

KNOWN = {"$schema", "$defs", "$ref", "title", "description", "type", "enum", "required",
         "additionalProperties", "properties", "items"}
TYPES = {
    "object": lambda v: isinstance(v, dict),
    "array": lambda v: isinstance(v, list),
    "string": lambda v: isinstance(v, str),
    "boolean": lambda v: isinstance(v, bool),
    "null": lambda v: v is None,
    "integer": lambda v: isinstance(v, int) and not isinstance(v, bool),
    "number": lambda v: isinstance(v, (int, float)) and not isinstance(v, bool),
}


def fail(place, what):
    sys.exit(f"{place or 'document'}: {what}")


def check(value, schema, whole, place):
    if "$ref" in schema:
        schema = whole["$defs"][schema["$ref"].removeprefix("#/$defs/")]
    unknown = set(schema) - KNOWN
    if unknown:
        fail(place, f"the schema uses {unknown}, which this program does not know")
    kinds = schema.get("type", [])
    kinds = [kinds] if isinstance(kinds, str) else kinds
    if kinds and not any(TYPES[kind](value) for kind in kinds):
        fail(place, f"{value!r} is none of {kinds}")
    if "enum" in schema and value not in schema["enum"]:
        fail(place, f"{value!r} is none of {schema['enum']}")
    if isinstance(value, dict):
        for key in schema.get("required", []):
            if key not in value:
                fail(place, f"lacks {key}")
        for key, part in value.items():
            if key in schema.get("properties", {}):
                check(part, schema["properties"][key], whole, f"{place}.{key}")
            elif schema.get("additionalProperties") is False:
                fail(place, f"has {key}, which the schema does not know")
    if isinstance(value, list) and "items" in schema:
        for at, part in enumerate(value):
            check(part, schema["items"], whole, f"{place}[{at}]")


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        schema = json.load(file)
    with open(sys.argv[2], encoding="utf-8") as file:
        document = json.load(file)
    check(document, schema, schema, "")


main()
