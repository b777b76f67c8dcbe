# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the operations: their values, their requests and answers, and the table of all."""

from . import cpp
from .rules import Rules

SOURCES = 4
CASES = {
    200: "Ok",
    201: "Created",
    202: "Accepted",
    204: "NoContent",
    302: "Found",
    400: "BadRequest",
    401: "Unauthorized",
    403: "Forbidden",
    404: "NotFound",
    409: "Conflict",
    412: "PreconditionFailed",
    422: "UnprocessableContent",
    429: "TooManyRequests",
    502: "BadGateway",
    503: "ServiceUnavailable",
}


def files(document):
    made = {
        "OrvaneAPI/Operations.h": operations_header(document),
        "OrvaneAPI/OperationTable.cpp": table_source(document.operations),
    }
    rules = Rules(document)
    includes = ['"OrvaneAPI/Operations.h"', '"OrvaneAPI/RequestBuilder.h"', '"OrvaneAPI/SchemaChecks.h"']
    for index, part in enumerate(cpp.split(document.operations, SOURCES), 1):
        body = "".join(request_function(operation) + read_function(operation, rules) for operation in part)
        made[f"OrvaneAPI/Operations{index}.cpp"] = cpp.source(includes, body, "orvane::operations")
        outputs = "".join(output_function(operation) for operation in part)
        output_includes = ['"OrvaneAPI/Operations.h"', '"OrvaneAPI/ResponseReader.h"']
        made[f"OrvaneAPI/Outputs{index}.cpp"] = cpp.source(output_includes, outputs, "orvane::operations")
    return made


def method_text(operation):
    return f"HttpMethod::{cpp.identifier(operation.method.lower())}"


def truth(value):
    return "true" if value else "false"


def case_type(answer):
    name = CASES[answer.status]
    if answer.body is None:
        return name
    return f"{name}<{cpp.bare_type(answer.body)}>"


# Operations.h


def operations_header(document):
    includes = ['"OrvaneAPI/HttpMessage.h"', '"OrvaneAPI/RequestReader.h"', '"OrvaneAPI/Responses.h"',
                '"OrvaneAPI/Schemas.h"', '"Support/Result.h"', "<variant>"]
    body = "".join(operation_struct(operation, document.schemas) for operation in document.operations)
    return cpp.header(includes, body, "orvane::operations")


def operation_struct(operation, schemas):
    cases = ",\n                                ".join([case_type(a) for a in operation.answers] + ["Undocumented"])
    return (
        f"{cpp.comment(operation.summary)}struct {operation.name} {{\n"
        f"    static constexpr std::string_view name = {cpp.quoted(operation.name)};\n"
        f"    static constexpr HttpMethod method = {method_text(operation)};\n"
        f"    static constexpr std::string_view pathTemplate = {cpp.quoted(operation.path)};\n"
        f"    static constexpr bool wantsSignIn = {truth(operation.wants_sign_in)};\n\n"
        f"    struct Input {{\n{input_members(operation, schemas)}"
        f"        bool operator==(const Input &) const = default;\n    }};\n"
        f"    using Output = std::variant<{cases}>;\n\n"
        f"    static HttpRequest request(const Input &input);\n"
        f"    static Result<Output, DecodingError> output(const HttpResponse &response);\n"
        f"    static Result<Input, RequestProblem> read(const RequestParts &parts);\n}};\n\n"
    )


def input_members(operation, schemas):
    lines = [
        f"        {cpp.member_type(p.type, p.required)} {cpp.identifier(p.name)}"
        f"{cpp.initializer(p.type, p.required, schemas)};\n"
        for p in operation.parameters
    ]
    if operation.body:
        lines.append(f"        {cpp.bare_type(operation.body)} body;\n")
    return "".join(lines) + ("\n" if lines else "")


# OperationsN.cpp and OutputsN.cpp


def request_function(operation):
    lines = [f"    RequestBuilder builder(method);\n"]
    plain = ""
    for segment in operation.path[1:].split("/"):
        if segment.startswith("{"):
            lines.append(f"    builder.literal({cpp.quoted(plain + '/')});\n")
            lines.append(f"    builder.argument(input.{cpp.identifier(segment[1:-1])});\n")
            plain = ""
        else:
            plain += "/" + segment
    if plain:
        lines.append(f"    builder.literal({cpp.quoted(plain)});\n")
    for p in operation.parameters:
        if p.place != "path":
            lines.append(f"    builder.{p.place}({cpp.quoted(p.name)}, input.{cpp.identifier(p.name)});\n")
    if operation.body:
        lines.append("    builder.body(encodeJson(input.body));\n")
    unused = "" if operation.parameters or operation.body else "[[maybe_unused]] "
    return (
        f"HttpRequest {operation.name}::request({unused}const Input &input)\n{{\n{''.join(lines)}"
        f"    return builder.take();\n}}\n\n"
    )


def output_function(operation):
    cases = "".join(
        f"    case {answer.status}:\n        return {answer_reader(answer)}<Output, {case_type(answer)}>(response);\n"
        for answer in operation.answers
    )
    return (
        f"Result<{operation.name}::Output, DecodingError> {operation.name}::output(const HttpResponse &response)\n{{\n"
        f"    switch (response.status) {{\n{cases}    default:\n        return undocumented<Output>(response);\n"
        f"    }}\n}}\n\n"
    )


def answer_reader(answer):
    if answer.has_location:
        return "redirectAnswer"
    if answer.body is None:
        return "emptyAnswer"
    if answer.body.kind == "binary":
        return "binaryAnswer"
    return "problemAnswer" if answer.status >= 400 else "bodyAnswer"


def read_function(operation, rules):
    lines = []
    in_path = [segment[1:-1] for segment in operation.path.split("/") if segment.startswith("{")]
    for p in operation.parameters:
        place = str(in_path.index(p.name)) + ", " if p.place == "path" else ""
        rule = rules.rule(p.type)
        lines.append(
            f"    reader.{p.place}({place}{cpp.quoted(p.name)}, input.{cpp.identifier(p.name)}"
            f"{', ' + ''.join(rule) if rule else ''});\n"
        )
    if operation.body:
        lines.append(f"    reader.body(input.body, {rules.expression(operation.body)});\n")
    return (
        f"Result<{operation.name}::Input, RequestProblem> {operation.name}::read(const RequestParts &parts)\n{{\n"
        f"    RequestReader reader(parts);\n    Input input;\n{''.join(lines)}"
        f"    return reader.finish(std::move(input));\n}}\n\n"
    )


# OperationTable.cpp


def table_source(operations):
    rows = "".join(
        f"    OperationInfo{{{cpp.quoted(o.name)}, {method_text(o)}, {cpp.quoted(o.path)}, {o.order}, "
        f"{truth(o.wants_sign_in)}}},\n"
        for o in operations
    )
    body = (
        f"namespace {{\nconstexpr std::array<OperationInfo, {len(operations)}> table{{{{\n{rows}}}}};\n}} // namespace\n\n"
        "std::span<const OperationInfo> allOperations()\n{\n    return table;\n}\n"
    )
    return cpp.source(['"OrvaneAPI/Routes.h"', "<array>"], body)
