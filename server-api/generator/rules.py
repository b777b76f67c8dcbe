# SPDX-License-Identifier: GPL-3.0-or-later
"""The document's constraints as the rules of OrvaneAPI/Checks.h, for the schemas that requests send."""

from . import cpp
from .document import referred, refuse

INTEGERS = {"minLength", "maxLength", "minItems", "maxItems"}


def sent_by_requests(document):
    """The names of the object schemas that a request's body reaches, in the order of the document."""
    reached = set()

    def reach(type_):
        for name in referred(type_):
            if name not in reached:
                reached.add(name)
                for member in document.schemas[name].members:
                    reach(member.type)

    for operation in document.operations:
        if operation.body:
            reach(operation.body)
    return [name for name, schema in document.schemas.items() if name in reached and not schema.is_enum]


class Rules:
    def __init__(self, document):
        self.schemas = document.schemas
        self.known = {}

    def schema_has_rules(self, name):
        if name not in self.known:
            self.known[name] = any(self.rule(member.type) for member in self.schemas[name].members)
        return self.known[name]

    def rule(self, type_):
        """The type and the braces of a rule, such as ("TextRule", "{.maximum = 64}"), or None without constraints."""
        if type_.kind == "array":
            return self.list_rule(type_)
        if type_.kind == "map":
            return self.map_rule(type_)
        if type_.kind == "object":
            return ("SchemaRule", "{}") if self.schema_has_rules(type_.name) else None
        if type_.kind == "raw":
            return "ObjectRule", "{}"
        return self.scalar_rule(type_)

    def list_rule(self, type_):
        item = self.rule(type_.item)
        limits = self.limits(type_, "minItems", "maxItems")
        if not item and not limits:
            return None
        name, braces = item or ("NoRule", "{}")
        return f"ListRule<{name}>", self.braces(limits + ([f".item = {braces}"] if item else []))

    def map_rule(self, type_):
        if self.rule(type_.item):
            refuse("map", "has constraints on the values of a map, which requests do not check")
        return None

    def scalar_rule(self, type_):
        texts = type_.rule("enum")
        if texts:
            if type_.rule("minLength") is not None or type_.rule("maxLength") is not None:
                refuse("/".join(texts), "lists values and limits their length")
            listed = ", ".join(cpp.quoted(text) for text in texts)
            return f"ChoiceRule<{len(texts)}>", f"{{{{{listed}}}}}"
        if type_.kind == "string":
            limits = self.limits(type_, "minLength", "maxLength")
            return ("TextRule", self.braces(limits)) if limits else None
        limits = self.limits(type_, "minimum", "maximum")
        return ("NumberRule", self.braces(limits)) if limits else None

    def limits(self, type_, low, high):
        pairs = ((".minimum", type_.rule(low), low), (".maximum", type_.rule(high), high))
        for _, value, key in pairs:
            if value is not None and (isinstance(value, bool) or not isinstance(value, (int, float))):
                refuse(key, f"is no number: {value}")
            if key in INTEGERS and value is not None and (not isinstance(value, int) or value < 0):
                refuse(key, f"is no count: {value}")
        return [f"{name} = {value}" for name, value, key in pairs if value is not None and (value or key == "minimum")]

    def braces(self, parts):
        return "{" + ", ".join(parts) + "}"

    def expression(self, type_):
        found = self.rule(type_)
        return "".join(found) if found else "NoRule{}"
