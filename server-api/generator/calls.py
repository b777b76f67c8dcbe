# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the client's calls: one method for each operation, which gives the success that the document lists.

The successes are an operation's answers below 400. One with a body gives the body; several with bodies give one type;
one without a body beside one with makes the body optional; a redirect gives its address."""

from . import cpp
from .document import Type, refuse

SOURCES = 6
# What a header's value is to a caller.
HEADER_NAMES = {"If-Match": "version"}


def files(document):
    made = {"Http/ServerCalls.h": header(document)}
    includes = ['"Http/ServerCalls.h"', '"OrvaneAPI/Operations.h"', "<utility>"]
    for index, part in enumerate(cpp.split(document.operations, SOURCES), 1):
        body = "".join(definition(operation) for operation in part)
        made[f"Http/ServerCalls{index}.cpp"] = cpp.source(includes, body)
    return made


def successes(operation):
    return [answer for answer in operation.answers if answer.status < 400]


def body_type(operation):
    """What a success with a body gives, or None when no success has one."""
    types = [Type("string") if answer.has_location else answer.body for answer in successes(operation)]
    found = {type_ for type_ in types if type_}
    if len(found) > 1:
        refuse(operation.name, "has successes of several types")
    return next(iter(found), None)


def value_type(operation):
    type_ = body_type(operation)
    if type_ is None:
        return "void"
    is_optional = any(answer.body is None and not answer.has_location for answer in successes(operation))
    return f"std::optional<{bare(type_)}>" if is_optional else bare(type_)


def bare(type_):
    return cpp.bare_type(type_).replace("::orvane::", "")


def member(parameter):
    return cpp.member_type(parameter.type, parameter.required).replace("::orvane::", "")


def argument(name):
    return HEADER_NAMES.get(name, cpp.identifier(name))


def parameters(operation):
    """(type, name, whether it may be left out) in the order of the call: path, query, body, headers."""
    in_path = [segment[1:-1] for segment in operation.path.split("/") if segment.startswith("{")]
    path = sorted((p for p in operation.parameters if p.place == "path"), key=lambda p: in_path.index(p.name))
    query = [p for p in operation.parameters if p.place == "query"]
    headers = [p for p in operation.parameters if p.place == "header"]
    made = [(member(p), argument(p.name), False) for p in path]
    made += [(member(p), argument(p.name), not p.required) for p in query]
    if operation.body:
        made.append((bare(operation.body), "body", False))
    made += [(member(p), argument(p.name), False) for p in headers]
    last_without = max((i for i, (_, _, has_default) in enumerate(made) if not has_default), default=-1)
    return [(type_, name, has_default and i > last_without) for i, (type_, name, has_default) in enumerate(made)]


# ServerCalls.h

CLASS = """/// The operations of the API as calls, through a channel that carries them: who may call from where, and where a caller
/// resumes, is the channel's. Identifiers are opaque text and instants whole milliseconds; a `version` is what
/// the server gave with what is changed, and travels as If-Match. An answer that is none of an operation's successes is an APIError when its
/// status says so, and otherwise a DecodingError.
class ServerCalls {
public:
    explicit ServerCalls(CallChannel channel) : m_channel(std::move(channel)) {}

"""


def header(document):
    methods = "\n".join(declaration(operation) for operation in document.operations)
    body = f"{CLASS}{methods}\nprotected:\n    const CallChannel &channel() const {{ return m_channel; }}\n\n"
    body += "private:\n    CallChannel m_channel;\n};\n"
    return cpp.header(['"Http/CallChannel.h"', '"OrvaneAPI/Schemas.h"', "<optional>", "<string>", "<utility>", "<vector>"],
                      body)


def declaration(operation):
    listed = ", ".join(
        f"{type_} {name}" + (" = {}" if has_default else "")
        for type_, name, has_default in parameters(operation)
    )
    return (
        f"{comment(operation)}    Task<CallResult<{value_type(operation)}>> {cpp.identifier(operation.name)}({listed}) const;\n"
    )


def comment(operation):
    """The operation's summary, and what each success means where there are several."""
    text = cpp.comment(operation.summary, "    ")
    if len(successes(operation)) > 1:
        meanings = "; ".join(f"{answer.status}: {answer.description}" for answer in successes(operation))
        text += cpp.comment(meanings, "    ")
    return text


# ServerCallsN.cpp


def definition(operation):
    listed = parameters(operation)
    arguments = ", ".join(f"{type_} {name}" for type_, name, _ in listed)
    # Designated initializers keep to the order of the members: parameters as the document lists them, then the body.
    names = [p.name for p in operation.parameters] + (["body"] if operation.body else [])
    values = ", ".join(f".{cpp.identifier(name)} = std::move({argument(name)})" for name in names)
    wanted = ", ".join(success(operation, answer) for answer in successes(operation))
    name = f"operations::{operation.name}"
    value = value_type(operation)
    return (
        f"Task<CallResult<{value}>> ServerCalls::{cpp.identifier(operation.name)}({arguments}) const\n{{\n"
        f"    return m_channel.ask<{value}>({{{name}::name, {name}::request({{{values}}}), {{{wanted}}}}});\n}}\n\n"
    )


def success(operation, answer):
    if answer.has_location:
        return f"{{{answer.status}, &readLocation}}"
    if answer.body is None:
        return f"{{{answer.status}}}"
    if answer.body.kind == "binary":
        return f"{{{answer.status}, &readBytes}}"
    body = bare(answer.body)
    read = "readJson" if body == value_type(operation) else "readOptionalJson"
    return f"{{{answer.status}, &{read}<{body}>}}"
