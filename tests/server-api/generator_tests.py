#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The generator refuses what it does not understand, and makes the same from the same: generator_tests.py SERVER_API."""

from pathlib import Path
import os
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = Path(os.environ.get("ORVANE_SERVER_API", Path(__file__).parents[2] / "server-api"))

# The smallest document that makes something; each test mends or breaks one piece of it.
DOCUMENT = """openapi: 3.0.3
info: {title: Test, version: '1'}
paths:
  /things/{thingId}:
    put:
      operationId: WriteThing
      x-order: 1
      summary: Write a thing
      parameters:
        - {name: thingId, in: path, required: true, schema: {type: string}}
        - {name: If-Match, in: header, schema: {type: string}}
      requestBody:
        required: true
        content: {application/json: {schema: {$ref: '#/components/schemas/Thing'}}}
      responses:
        '204': {description: Written}
        '404': {$ref: '#/components/responses/NotFound'}
  /things:
    get:
      operationId: ListThings
      x-order: 2
      summary: List the things
      responses:
        '200': {description: All, content: {application/json: {schema: {type: array, items: {$ref: '#/components/schemas/Thing'}}}}}
components:
  responses:
    NotFound: {description: None, content: {application/problem+json: {schema: {$ref: '#/components/schemas/Problem'}}}}
  schemas:
    Thing:
      description: A thing
      type: object
      required: [register]
      properties:
        register: {type: string, maxLength: 5}
        kind: {$ref: '#/components/schemas/Kind'}
    Kind: {description: A kind, type: string, enum: [small, union]}
    Problem: {description: A problem, type: object, properties: {title: {type: string, nullable: true}}}
"""


def generate(document, folder):
    source = Path(folder) / "document.yaml"
    source.write_text(document, encoding="utf-8")
    return subprocess.run(
        [sys.executable, "-B", str(ROOT / "generate.py"), str(source), str(Path(folder) / "out")],
        capture_output=True,
        text=True,
        check=False,
    )


class Generator(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)

    def made(self, name):
        return (self.folder / "out" / name).read_text(encoding="utf-8")

    def sources(self):
        return [path for path in (self.folder / "out").rglob("*") if path.is_file()]

    def refused(self, piece, other, message):
        self.assertIn(piece, DOCUMENT)
        result = generate(DOCUMENT.replace(piece, other, 1), self.folder)
        self.assertEqual(result.returncode, 1, f"{other}: {result.stderr}")
        self.assertIn(message, result.stderr)
        self.assertFalse((self.folder / "out").exists(), "something was made all the same")

    def test_makes_names_that_compile(self):
        result = generate(DOCUMENT, self.folder)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("std::string register_;", self.made("OrvaneAPI/Schemas.h"))
        self.assertIn('jsonField<"register">(&Thing::register_)', self.made("OrvaneAPI/SchemaFields.h"))
        self.assertIn('std::pair{Kind::union_, std::string_view("union")}', self.made("OrvaneAPI/Schemas.h"))
        self.assertIn("std::optional<std::string> ifMatch{};", self.made("OrvaneAPI/Operations.h"))

    def test_makes_calls_of_the_successes(self):
        self.assertEqual(generate(DOCUMENT, self.folder).returncode, 0)
        calls = self.made("Http/ServerCalls.h")
        self.assertIn("Task<CallResult<void>> writeThing(std::string thingId, Thing body, std::optional<std::string> version)",
                      calls)
        self.assertIn("Task<CallResult<std::vector<Thing>>> listThings() const;", calls)
        nothing = "        '204': {description: There is none}\n"
        result = generate(DOCUMENT.replace("components:\n", nothing + "components:\n", 1), self.folder)
        self.assertEqual(result.returncode, 0, result.stderr)
        calls = self.made("Http/ServerCalls.h")
        self.assertIn("/// 200: All; 204: There is none.", calls)
        self.assertIn("Task<CallResult<std::optional<std::vector<Thing>>>> listThings() const;", calls)
        other = "        '201': {description: One, content: {application/json: {schema: {$ref: '#/components/schemas/Thing'}}}}\n"
        result = generate(DOCUMENT.replace("components:\n", other + "components:\n", 1), self.folder)
        self.assertEqual(result.returncode, 1)
        self.assertIn("ListThings: has successes of several types", result.stderr)

    def test_says_which_operations_want_a_sign_in(self):
        schemes = "components:\n  securitySchemes: {token: {type: http, scheme: bearer}}\n"
        secured = "security: [{token: []}]\n" + DOCUMENT.replace("components:\n", schemes)
        opened = secured.replace("summary: List the things\n", "summary: List the things\n      security: []\n")
        for document, wanted in ((DOCUMENT, ["false", "false"]), (secured, ["true", "true"]), (opened, ["true", "false"])):
            result = generate(document, self.folder)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertEqual(re.findall("bool wantsSignIn = ([a-z]+);", self.made("OrvaneAPI/Operations.h")), wanted)
            self.assertEqual(re.findall(r"OperationInfo{.*, \d, ([a-z]+)}", self.made("OrvaneAPI/OperationTable.cpp")), wanted)

    def test_leaves_unchanged_files_untouched(self):
        generate(DOCUMENT, self.folder)
        before = {p.name: (p.read_bytes(), os.utime(p, (1, 1))) for p in self.sources()}
        result = generate(DOCUMENT.replace("/things:", "/all-things:"), self.folder)
        self.assertEqual(result.returncode, 0, result.stderr)
        changed = {p.name for p in self.sources() if p.stat().st_mtime != 1}
        self.assertIn("Operations.h", changed)
        self.assertNotIn("Schemas.h", changed)
        for name in set(before) - changed:
            self.assertEqual(next((self.folder / "out").rglob(name)).read_bytes(), before[name][0])

    def test_refuses_types_it_does_not_know(self):
        self.refused("maxLength: 5", "format: duration", "Thing.register: has the unknown type string (duration)")
        self.refused("maxLength: 5", "pattern: x", "Thing.register: does not understand pattern")
        self.refused("{type: string, maxLength: 5}", "{oneOf: []}", "Thing.register: has no type")
        self.refused("{type: string, maxLength: 5}", "{type: object}", "Thing.register: has no additionalProperties")
        self.refused("{type: string, maxLength: 5}", "{type: 'null'}", "Thing.register: has the unknown type null")
        self.refused("enum: [small, union]", "enum: [small, small]", "Kind: lists a value twice")
        self.refused("type: string, enum", "type: integer, enum", "Kind: is an enumeration of something other than")
        self.refused("openapi: 3.0.3", "openapi: 3.1.0", "is of version 3.1.0")

    def test_refuses_security_it_does_not_know(self):
        summary = "summary: List the things\n"
        for security, message in (
            ("[{token: []}]", "ListThings: refers to the unknown security scheme token"),
            ("[{a: []}, {b: []}]", "ListThings: has a security other than none or one scheme"),
            ("[{token: [read]}]", "ListThings: has a security other than none or one scheme"),
            ("{token: []}", "ListThings: has a security other than none or one scheme"),
            ("[token]", "ListThings: has a security other than none or one scheme"),
        ):
            self.refused(summary, f"{summary}      security: {security}\n", message)

    def test_refuses_references_that_lead_nowhere(self):
        self.refused("schemas/Kind'", "schemas/Sort'", "Thing.kind: refers to the unknown schema Sort")
        self.refused("responses/NotFound'", "responses/Gone'", "responses: has no Gone")
        self.refused("'#/components/schemas/Kind'", "'other.yaml#/Kind'", "Thing.kind: refers to other.yaml#/Kind")
        self.refused("schemas/Kind'}", "schemas/Thing'}", "Thing: holds itself, through Thing > Thing")
        self.refused("required: [register]", "required: [name]", "Thing: requires name, which it does not have")

    def test_refuses_what_is_there_twice(self):
        self.refused("operationId: ListThings", "operationId: WriteThing", "the operation of WriteThing")
        self.refused("x-order: 2", "x-order: 1", "has the x-order of WriteThing, 1")
        self.refused("    Kind: {", "    Thing: {", "'Thing' is given twice")
        self.refused("name: If-Match", "name: thingId", "two parameters of one name")
        self.refused("name: If-Match", "name: body", "two parameters of one name")

    def test_refuses_operations_it_cannot_call(self):
        self.refused("  /things/{thingId}:", "  /things/{id}:", "has the path parameters ['thingId'] but a path with ['id']")
        self.refused("/{thingId}:", "/x{thingId}:", "not a whole segment")
        self.refused("    get:", "    patch:", "does not understand patch")
        self.refused("in: header", "in: cookie", "in the unknown place cookie")
        self.refused("'204'", "'226'", "is a status that is unknown")
        self.refused("'204': {description: Written}", "'204': {$ref: '#/components/responses/NotFound'}", "out of place")
        self.refused("content: {application/json: {schema: {$ref", "content: {text/xml: {schema: {$ref", "text/xml")
        self.refused("x-order: 2", "x-order: two", "has an x-order that is no number")
        self.refused("      x-order: 2\n", "", "ListThings: has no x-order")
        self.refused("{type: array, items: {$ref: '#/components/schemas/Thing'}}", "{type: string, format: binary}",
                     "has a binary as application/json")

    def test_refuses_text_that_is_no_document(self):
        for text in ("{", "- a list", "", "openapi: 3.0.3"):
            result = generate(text, self.folder)
            self.assertEqual(result.returncode, 1, text)
            self.assertNotIn("Traceback", result.stderr)


if __name__ == "__main__":
    unittest.main()
