#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes Samples.cpp from the API's document: make_samples.py openapi.yaml Samples.cpp.

Shares nothing with the generator on purpose: it is the second opinion that the tests compare it with."""

from pathlib import Path
import json
import re
import sys

import yaml

INSTANT = "2026-03-01T09:30:00.123Z"
DAY = "2024-02-29"
TEXT = "a/b ü+&%=?#"
ENCODED_TEXT = "a%2Fb%20%C3%BC%2B%26%25%3D%3F%23"


class Samples:
    def __init__(self, tree):
        self.schemas = tree["components"]["schemas"]
        self.responses = tree["components"]["responses"]

    def value(self, schema, full):
        if "$ref" in schema:
            return self.value(self.schemas[schema["$ref"].rsplit("/", 1)[1]], full)
        return getattr(self, "of_" + schema["type"])(schema, full)

    def of_string(self, schema, _):
        if "enum" in schema:
            return schema["enum"][-1]
        if "format" in schema:
            return {"date-time": INSTANT, "date": DAY}[schema["format"]]
        # Letters of two bytes: the limits count characters.
        return ("ü" * max(schema.get("minLength", 0), 3))[: schema.get("maxLength", 100)]

    def of_integer(self, schema, _):
        return int(max(schema.get("minimum", 7), min(7, schema.get("maximum", 7))))

    def of_number(self, schema, _):
        return max(schema.get("minimum", 1.5), min(1.5, schema.get("maximum", 1.5)))

    def of_boolean(self, *_):
        return True

    def of_array(self, schema, full):
        return [self.value(schema["items"], full)] * max(schema.get("minItems", 0), 1)

    def of_object(self, schema, full):
        if "properties" in schema:
            required = schema.get("required", [])
            return {k: self.value(v, full) for k, v in schema["properties"].items() if full or k in required}
        if schema["additionalProperties"] is True:
            return {"free": [1, None]}
        return {"key": self.value(schema["additionalProperties"], full)}

    def written(self, schema, value):
        """`value` as it is written: lists and maps that may be absent are written empty."""
        if "$ref" in schema:
            return self.written(self.schemas[schema["$ref"].rsplit("/", 1)[1]], value)
        if schema["type"] == "array":
            return [self.written(schema["items"], item) for item in value]
        if schema["type"] != "object" or "properties" not in schema:
            return value
        out = {}
        for name, member in schema["properties"].items():
            if name in value:
                out[name] = self.written(member, value[name])
            elif not member.get("nullable"):
                empty = {"array": [], "object": {}}.get(member.get("type"))
                if empty is not None and member.get("additionalProperties") is not True:
                    out[name] = empty
        return out

    def cpp_type(self, schema):
        if "$ref" in schema:
            return schema["$ref"].rsplit("/", 1)[1]
        if schema["type"] == "array":
            return f"std::vector<{self.cpp_type(schema['items'])}>"
        return {"string": "std::string"}[schema["type"]]


def literal(value):
    text = json.dumps(value, separators=(",", ":"), ensure_ascii=False)
    return f'R"json({text})json"'


def schema_row(samples, name, schema):
    least = samples.value(schema, False)
    texts = samples.value(schema, True), least, samples.written(schema, least)
    return f'    SchemaSample{{"{name}", {", ".join(literal(t) for t in texts)}, &again<{name}>}},\n'


def camel(name):
    words = re.split(r"\W+", name)
    return words[0][0].lower() + words[0][1:] + "".join(words[1:])


def parameter_value(parameter):
    schema = parameter["schema"]
    if schema["type"] == "string" and "format" not in schema:
        # A header carries what its sender chose; the rest is encoded.
        return f'std::string("{TEXT}")' if parameter["in"] != "header" else 'std::string("v 1")'
    if schema.get("format") == "date-time":
        return f'ParameterForm<Instant>::read("{INSTANT}").value()'
    if schema.get("format") == "date":
        return f'ParameterForm<std::chrono::year_month_day>::read("{DAY}").value()'
    return {"boolean": "true", "integer": "7"}[schema["type"]]


def input_function(samples, operation):
    name = operation["operationId"]
    lines = [f"    input.{camel(p['name'])} = {parameter_value(p)};\n" for p in operation.get("parameters", [])]
    if "requestBody" in operation:
        schema = operation["requestBody"]["content"]["application/json"]["schema"]
        value = literal(samples.value(schema, True))
        lines.append(f"    input.body = decoded<{samples.cpp_type(schema)}>({value});\n")
    body = "".join(lines)
    return (
        f"template <>\noperations::{name}::Input inputOf<operations::{name}>()\n{{\n"
        f"    operations::{name}::Input input;\n{body}    return input;\n}}\n\n"
    )


def answer_text(samples, response):
    if "$ref" in response:
        response = samples.responses[response["$ref"].rsplit("/", 1)[1]]
    for media, content in response.get("content", {}).items():
        if media == "application/octet-stream":
            return '"\\x01\\xFFraw"'
        return literal(samples.value(content["schema"], True))
    return '""'


def answers_of(samples, operation):
    rows = "".join(
        f"    AnswerSample{{{status}, {answer_text(samples, response)}}},\n"
        for status, response in sorted(operation["responses"].items())
    )
    return f"constexpr AnswerSample {camel(operation['operationId'])}Answers[]{{\n{rows}}};\n"


def path_of(path, operation):
    for parameter in operation.get("parameters", []):
        if parameter["in"] == "path":
            text = DAY if parameter["schema"].get("format") == "date" else ENCODED_TEXT
            path = path.replace("{" + parameter["name"] + "}", text)
    return path


def source(tree):
    samples = Samples(tree)
    operations = [(path, o) for path, methods in tree["paths"].items() for o in methods.values()]
    operations.sort(key=lambda pair: pair[1]["x-order"])
    schema_rows = "".join(schema_row(samples, name, schema) for name, schema in samples.schemas.items())
    inputs = "".join(input_function(samples, o) for _, o in operations)
    answers = "".join(answers_of(samples, o) for _, o in operations)
    rows = "".join(
        f'    operationSample<operations::{o["operationId"]}>("{path_of(path, o)}", {camel(o["operationId"])}Answers),\n'
        for path, o in operations
    )
    return f"""// Made from openapi.yaml by make_samples.py.
#include "server-api/Samples.h"

#include "OrvaneAPI/Operations.h"

namespace orvane::samples {{

{inputs}namespace {{
constexpr SchemaSample schemas[]{{
{schema_rows}}};

{answers}
const OperationSample operationTable[]{{
{rows}}};
}} // namespace

std::span<const SchemaSample> schemaSamples()
{{
    return schemas;
}}

std::span<const OperationSample> operationSamples()
{{
    return operationTable;
}}

}} // namespace orvane::samples
"""


if __name__ == "__main__":
    document, target = sys.argv[1:]
    Path(target).write_text(source(yaml.safe_load(Path(document).read_text(encoding="utf-8"))), encoding="utf-8")
