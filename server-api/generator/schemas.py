# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the structs, their JSON and their checks."""

from . import cpp
from .rules import Rules, sent_by_requests

SOURCES = 8


def files(document):
    schemas = list(document.schemas.values())
    made = {
        "OrvaneAPI/Schemas.h": schemas_header(schemas, document.schemas),
        "OrvaneAPI/SchemaFields.h": fields_header(schemas),
        "OrvaneAPI/SchemaChecks.h": checks_header(document),
        "OrvaneAPI/SchemaChecks.cpp": checks_source(document),
    }
    vectors = vector_bodies(document)
    for index, (part, lists) in enumerate(zip(cpp.split(schemas, SOURCES), cpp.split(vectors, SOURCES)), 1):
        body = "".join(f"ORVANE_JSON(::orvane::{schema.name})\n" for schema in part)
        body += "".join(f"ORVANE_JSON({name})\n" for name in lists)
        made[f"OrvaneAPI/Schemas{index}.cpp"] = cpp.source(['"OrvaneAPI/SchemaFields.h"', '"Support/JsonImpl.h"'], body, None)
    return made


def vector_bodies(document):
    """The lists that are a whole body."""
    types = [answer.body for operation in document.operations for answer in operation.answers]
    types += [operation.body for operation in document.operations]
    return sorted({cpp.bare_type(type_) for type_ in types if type_ and type_.kind in ("array", "map")})


def schemas_header(schemas, by_name):
    includes = ['"Support/Instant.h"', '"Support/Json.h"', "<map>", "<optional>", "<string>", "<vector>"]
    body = "".join(enumeration(s) if s.is_enum else structure(s, by_name) for s in schemas)
    return cpp.header(includes, body)


def enumeration(schema):
    values = [cpp.identifier(text) for text in schema.texts]
    names = "".join(f"    {value},\n" for value in values)
    pairs = "".join(
        f"        std::pair{{{schema.name}::{value}, std::string_view({cpp.quoted(text)})}},\n"
        for value, text in zip(values, schema.texts)
    )
    return (
        f"{cpp.comment(schema.description)}enum class {schema.name} {{\n{names}    unrecognized,\n}};\n\n"
        f"template <>\nstruct JsonEnum<{schema.name}> {{\n"
        f"    static constexpr auto list = std::array{{\n{pairs}    }};\n"
        f"    static constexpr auto unrecognized = {schema.name}::unrecognized;\n}};\n\n"
    )


def structure(schema, by_name):
    members = "".join(member_line(member, by_name) for member in schema.members)
    return (
        f"{cpp.comment(schema.description)}struct {schema.name} {{\n{members}\n"
        f"    bool operator==(const {schema.name} &) const = default;\n}};\n\n"
    )


def member_line(member, by_name):
    type_name = cpp.member_type(member.type, member.required)
    note = cpp.comment(member.description, "    ") if member.description else ""
    return f"{note}    {type_name} {cpp.identifier(member.name)}{cpp.initializer(member.type, member.required, by_name)};\n"


def fields_header(schemas):
    note = (
        "// The JSON of the schemas. Only sources that instantiate the JSON of a type that holds one of them need this;\n"
        "// it is not in Schemas.h because it takes the compiler as long as that does.\n\n"
    )
    body = note + "".join(fields(schema) for schema in schemas if not schema.is_enum)
    return cpp.header(['"OrvaneAPI/Schemas.h"', '"Support/Json.h"'], body)


def fields(schema):
    lines = ",\n".join(f"        {field(schema, member)}" for member in schema.members)
    return (
        f"template <>\nstruct JsonFields<{schema.name}> {{\n"
        f"    static constexpr auto list = JsonFieldList{{\n{lines}}};\n}};\n\n"
    )


def field(schema, member):
    presence = ", JsonPresence::defaulted" if is_defaulted(member) else ""
    return f"jsonField<{cpp.quoted(member.name)}>(&{schema.name}::{cpp.identifier(member.name)}{presence})"


def is_defaulted(member):
    return not member.required and not cpp.is_optional(member.type, member.required)


def checked(document):
    rules = Rules(document)
    return rules, [name for name in sent_by_requests(document) if rules.schema_has_rules(name)]


def checks_header(document):
    _, names = checked(document)
    lines = "".join(f"void check(const {name} &value, Checks &checks);\n" for name in names)
    text = "/// Each notes in `checks` which members break the document's constraints.\n" + lines
    return cpp.header(['"OrvaneAPI/Checks.h"', '"OrvaneAPI/Schemas.h"'], text)


def checks_source(document):
    rules, names = checked(document)
    body = "".join(check_function(document.schemas[name], rules) for name in names)
    return cpp.source(['"OrvaneAPI/SchemaChecks.h"'], body)


def check_function(schema, rules):
    lines = "".join(
        f"    checks.member({cpp.quoted(member.name)}, value.{cpp.identifier(member.name)}, "
        f"{rules.expression(member.type)});\n"
        for member in schema.members
        if rules.rule(member.type)
    )
    return f"void check(const {schema.name} &value, Checks &checks)\n{{\n{lines}}}\n\n"
