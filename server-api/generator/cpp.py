# SPDX-License-Identifier: GPL-3.0-or-later
"""What the makers of schemas and operations share: C++ names, types and the frame of a file."""

import re
import textwrap

HEAD = "// SPDX-License-Identifier: GPL-3.0-or-later\n// Made from openapi.yaml by generate.py; do not edit.\n"
KEYWORDS = set(
    """alignas alignof and and_eq asm auto bitand bitor bool break case catch char class compl concept const consteval
    constexpr constinit const_cast continue co_await co_return co_yield decltype default delete do double dynamic_cast
    else enum explicit export extern false float for friend goto if inline int long mutable namespace new noexcept not
    not_eq nullptr operator or or_eq private protected public register reinterpret_cast requires return short signed
    sizeof static static_assert static_cast struct switch template this thread_local throw true try typedef typeid
    typename union unsigned using virtual void volatile wchar_t while xor xor_eq""".split()
)
PLAIN = {
    "string": "std::string",
    "binary": "std::string",
    "integer": "std::int64_t",
    "number": "double",
    "boolean": "bool",
    "instant": "Instant",
    "day": "std::chrono::year_month_day",
    "raw": "RawJson",
}
DEFAULTS = {"integer": " = 0", "number": " = 0", "boolean": " = false", "instant": "{}"}
# A year_month_day without a value is not a day and could not be written, so a fresh struct holds a real one.
DEFAULTS["day"] = "{std::chrono::year{1970}, std::chrono::January, std::chrono::day{1}}"


def identifier(name):
    """`name` in lowerCamel as a C++ name: If-Match becomes ifMatch, register becomes register_."""
    words = [word for word in re.split(r"[^A-Za-z0-9]+", name) if word]
    joined = words[0][0].lower() + words[0][1:] + "".join(word[0].upper() + word[1:] for word in words[1:])
    if joined[0].isdigit():
        joined = "_" + joined
    return joined + "_" if joined in KEYWORDS else joined


def bare_type(type_):
    """The C++ type of a value that is there."""
    if type_.kind == "array":
        return f"std::vector<{value_type(type_.item)}>"
    if type_.kind == "map":
        return f"std::map<std::string, {value_type(type_.item)}>"
    if type_.name:
        return f"::orvane::{type_.name}"
    return PLAIN[type_.kind]


def value_type(type_):
    return f"std::optional<{bare_type(type_)}>" if type_.nullable else bare_type(type_)


def is_optional(type_, required):
    return type_.nullable or (not required and type_.kind not in ("array", "map"))


def member_type(type_, required):
    return f"std::optional<{bare_type(type_)}>" if is_optional(type_, required) else bare_type(type_)


def initializer(type_, required, schemas):
    # With an initializer, what may be absent may be left out of a designated one; what is required is warned about.
    if not required or is_optional(type_, required):
        return "{}"
    if type_.kind == "enum":
        return f" = {bare_type(type_)}::{identifier(schemas[type_.name].texts[0])}"
    return DEFAULTS.get(type_.kind, "")


def quoted(text):
    escaped = text.replace("\\", "\\\\").replace('"', '\\"')
    return f'"{escaped}"'


def comment(text, indent=""):
    flat = " ".join(text.split())
    sentence = flat[0].upper() + flat[1:] + ("" if flat[-1] in ".!?" else ".")
    lines = textwrap.wrap(sentence, 106 - len(indent))
    return "".join(f"{indent}/// {line}\n" for line in lines)


def split(items, count):
    """`count` lists of about equal length that are `items` together."""
    items = list(items)
    return [items[len(items) * i // count : len(items) * (i + 1) // count] for i in range(count)]


def source(includes, body, namespace="orvane"):
    own = "".join(f"#include {name}\n" for name in includes if name.startswith('"'))
    standard = "".join(f"#include {name}\n" for name in includes if name.startswith("<"))
    lines = "\n".join(group for group in (own, standard) if group)
    opening, closing = (f"namespace {namespace} {{\n\n", f"\n}} // namespace {namespace}\n") if namespace else ("", "")
    return f"{HEAD}{lines}\n{opening}{body.rstrip()}\n{closing}"


def header(includes, body, namespace="orvane"):
    return source(includes, body, namespace).replace(HEAD, HEAD + "#pragma once\n\n", 1)
