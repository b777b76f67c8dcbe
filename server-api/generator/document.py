# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads the API document into plain values and refuses whatever it does not understand.

Guessing at a construct would make code that is subtly wrong, so every key of the document is either used here or
named as one that changes nothing (`description`, `summary`)."""

from dataclasses import dataclass, field
import re

import yaml

SCALARS = {
    ("string", None): "string",
    ("string", "date-time"): "instant",
    ("string", "date"): "day",
    ("string", "binary"): "binary",
    ("integer", None): "integer",
    ("number", None): "number",
    ("boolean", None): "boolean",
}
RULES = {
    "string": {"minLength", "maxLength", "enum"},
    "integer": {"minimum", "maximum"},
    "number": {"minimum", "maximum"},
    "array": {"minItems", "maxItems"},
}
METHODS = ("get", "post", "put", "delete")
WITH_BODY = {200, 201, 400, 401, 403, 404, 409, 412, 422, 429, 502, 503}
WITHOUT_BODY = {202, 204}
SCHEMA_PREFIX = "#/components/schemas/"
RESPONSE_PREFIX = "#/components/responses/"


class Refusal(Exception):
    """The document holds something that this generator does not understand."""


def refuse(where, what):
    raise Refusal(f"{where}: {what}")


@dataclass(frozen=True)
class Type:
    """kind: string instant day binary integer number boolean raw array map enum object. `item` is what an array or a
    map holds, `name` the schema an enum or object refers to."""

    kind: str
    item: "Type | None" = None
    name: str = ""
    rules: tuple = ()
    nullable: bool = False

    def rule(self, key):
        return dict(self.rules).get(key)


@dataclass(frozen=True)
class Member:
    name: str
    type: Type
    required: bool
    description: str = ""


@dataclass
class Schema:
    name: str
    description: str
    texts: list = field(default_factory=list)  # of an enumeration; empty for an object
    members: list = field(default_factory=list)

    @property
    def is_enum(self):
        return bool(self.texts)


@dataclass(frozen=True)
class Parameter:
    name: str
    place: str  # path, query or header
    type: Type
    required: bool


@dataclass(frozen=True)
class Answer:
    status: int
    body: Type | None
    has_location: bool = False
    description: str = ""


@dataclass
class Operation:
    name: str
    order: int
    method: str
    path: str
    summary: str
    parameters: list
    body: Type | None
    answers: list
    wants_sign_in: bool


@dataclass
class Document:
    schemas: dict
    operations: list


class StrictLoader(getattr(yaml, "CSafeLoader", yaml.SafeLoader)):
    """YAML lets a repeated key replace the first; here that is a mistake."""

    def construct_mapping(self, node, deep=False):
        seen = set()
        for key_node, _ in node.value:
            key = self.construct_object(key_node, deep=True)
            if key in seen:
                refuse(f"line {key_node.start_mark.line + 1}", f"'{key}' is given twice")
            seen.add(key)
        return super().construct_mapping(node, deep)


def load(text):
    try:
        tree = yaml.load(text, Loader=StrictLoader)
    except yaml.YAMLError as error:
        raise Refusal(f"not YAML: {error}") from error
    return Reader(tree).document()


def only_keys(where, mapping, allowed):
    if not isinstance(mapping, dict):
        refuse(where, "is not a mapping")
    unknown = sorted(str(key) for key in mapping if key not in allowed)
    if unknown:
        refuse(where, f"does not understand {', '.join(unknown)}")


def need(where, mapping, key):
    if not isinstance(mapping, dict) or key not in mapping:
        refuse(where, f"has no {key}")
    return mapping[key]


class Reader:
    def __init__(self, tree):
        only_keys("document", tree, {"openapi", "info", "security", "paths", "components"})
        if not str(need("document", tree, "openapi")).startswith("3.0."):
            refuse("document", f"is of version {tree['openapi']}, not 3.0")
        self.paths = need("document", tree, "paths")
        components = need("document", tree, "components")
        only_keys("components", components, {"schemas", "responses", "securitySchemes"})
        self.schemes = set(components.get("securitySchemes", {}))
        self.wants_sign_in = self.security("document", tree.get("security", []))
        self.schemas = need("components", components, "schemas")
        self.responses = components.get("responses", {})

    def document(self):
        schemas = {name: self.schema(name, tree) for name, tree in self.schemas.items()}
        return Document(in_order_of_use(schemas), self.operations())

    # Schemas

    def schema(self, name, tree):
        if not re.fullmatch(r"[A-Z][A-Za-z0-9_]*", name):
            refuse(f"schema {name}", "is no name of a type")
        schema = Schema(name, need(f"schema {name}", tree, "description"))
        if "enum" in tree:
            only_keys(name, tree, {"type", "enum", "description"})
            schema.texts = self.enum_texts(name, tree)
            return schema
        only_keys(name, tree, {"type", "properties", "required", "description"})
        if tree.get("type") != "object":
            refuse(name, f"is neither an object nor an enumeration but {tree.get('type')}")
        members = need(name, tree, "properties")
        required = tree.get("required", [])
        for missing in [r for r in required if r not in members]:
            refuse(name, f"requires {missing}, which it does not have")
        if len(members) > 64:
            refuse(name, "has more than 64 members")
        schema.members = [
            Member(m, self.type(f"{name}.{m}", t), m in required, t.get("description", "")) for m, t in members.items()
        ]
        return schema

    def enum_texts(self, where, tree):
        texts = tree["enum"]
        if tree.get("type") != "string" or not all(isinstance(text, str) and text for text in texts):
            refuse(where, "is an enumeration of something other than texts")
        if len(set(texts)) != len(texts) or "unrecognized" in texts:
            refuse(where, "lists a value twice or under a reserved name")
        return texts

    def type(self, where, tree):
        if not isinstance(tree, dict):
            refuse(where, "is not a schema")
        if "$ref" in tree:
            return self.reference(where, tree)
        kind = need(where, tree, "type")
        if kind == "array":
            only_keys(where, tree, {"type", "items", "nullable", "description"} | RULES["array"])
            item = self.type(f"{where}[]", need(where, tree, "items"))
            return self.made("array", tree, item)
        if kind == "object":
            return self.map_or_raw(where, tree)
        scalar = SCALARS.get((kind, tree.get("format")))
        if scalar is None:
            refuse(where, f"has the unknown type {kind}" + (f" ({tree['format']})" if "format" in tree else ""))
        only_keys(where, tree, {"type", "format", "nullable", "description"} | RULES.get(scalar, set()))
        if "enum" in tree:
            self.enum_texts(where, tree)
        return self.made(scalar, tree)

    def made(self, kind, tree, item=None):
        rules = tuple((k, tuple(tree[k]) if k == "enum" else tree[k]) for k in sorted(RULES.get(kind, ())) if k in tree)
        return Type(kind, item, rules=rules, nullable=tree.get("nullable", False))

    def reference(self, where, tree):
        only_keys(where, tree, {"$ref"})
        name = self.after(where, tree["$ref"], SCHEMA_PREFIX)
        if name not in self.schemas:
            refuse(where, f"refers to the unknown schema {name}")
        return Type("enum" if "enum" in self.schemas[name] else "object", name=name)

    def map_or_raw(self, where, tree):
        only_keys(where, tree, {"type", "additionalProperties", "nullable", "description"})
        items = need(where, tree, "additionalProperties")
        if items is True:
            return self.made("raw", tree)
        return self.made("map", tree, self.type(f"{where}{{}}", items))

    def after(self, where, reference, prefix):
        if not reference.startswith(prefix):
            refuse(where, f"refers to {reference}, which is not under {prefix}")
        return reference[len(prefix) :]

    # Operations

    def operations(self):
        operations = []
        for path, methods in self.paths.items():
            only_keys(path, methods, METHODS)
            operations += [self.operation(path, method, tree) for method, tree in methods.items()]
        self.refuse_doubles(operations, "name", "operation")
        self.refuse_doubles(operations, "order", "x-order")
        self.refuse_equal_routes(operations)
        return sorted(operations, key=lambda operation: operation.order)

    def refuse_doubles(self, operations, key, word):
        seen = {}
        for operation in operations:
            value = getattr(operation, key)
            if value in seen:
                refuse(operation.name, f"has the {word} of {seen[value]}, {value}")
            seen[value] = operation.name

    def refuse_equal_routes(self, operations):
        seen = {}
        for operation in operations:
            route = operation.method, re.sub(r"{[^}]*}", "{}", operation.path)
            if route in seen:
                refuse(operation.name, f"answers the requests of {seen[route]}")
            seen[route] = operation.name

    def operation(self, path, method, tree):
        where = f"{method} {path}"
        name = need(where, tree, "operationId")
        only_keys(
            name,
            tree,
            {"operationId", "x-order", "summary", "security", "parameters", "requestBody", "responses"},
        )
        if not re.fullmatch(r"[A-Z][A-Za-z0-9]*", name):
            refuse(where, f"has an operationId that is no name of a type: {name}")
        parameters = [self.parameter(name, tree) for tree in tree.get("parameters", [])]
        self.check_parameters(name, path, parameters)
        answers = [self.answer(f"{name} {status}", status, a) for status, a in need(name, tree, "responses").items()]
        if not any(answer.status < 400 for answer in answers):
            refuse(name, "has no answer for success")
        order = need(name, tree, "x-order")
        if not isinstance(order, int):
            refuse(name, "has an x-order that is no number")
        return Operation(
            name,
            order,
            method,
            path,
            need(name, tree, "summary"),
            parameters,
            self.request_body(name, tree),
            sorted(answers, key=lambda answer: answer.status),
            self.security(name, tree["security"]) if "security" in tree else self.wants_sign_in,
        )

    def security(self, where, tree):
        """Whether a call has to carry a sign-in: no scheme at all, or exactly one."""
        if tree == []:
            return False
        one = tree[0] if isinstance(tree, list) and len(tree) == 1 else None
        if not isinstance(one, dict) or list(one.values()) != [[]]:
            refuse(where, "has a security other than none or one scheme")
        (scheme,) = one
        if scheme not in self.schemes:
            refuse(where, f"refers to the unknown security scheme {scheme}")
        return True

    def parameter(self, operation, tree):
        name = need(operation, tree, "name")
        where = f"{operation} parameter {name}"
        only_keys(where, tree, {"name", "in", "required", "schema", "description"})
        place = need(where, tree, "in")
        if place not in ("path", "query", "header"):
            refuse(where, f"is in the unknown place {place}")
        parameter_type = self.type(where, need(where, tree, "schema"))
        if parameter_type.kind not in ("string", "instant", "day", "integer", "number", "boolean"):
            refuse(where, f"is of a type that has no text: {parameter_type.kind}")
        required = tree.get("required", False)
        if place == "path" and not required:
            refuse(where, "is in the path but not required")
        return Parameter(name, place, parameter_type, required)

    def check_parameters(self, operation, path, parameters):
        if not path.startswith("/") or "?" in path:
            refuse(operation, f"has a path that is none: {path}")
        for segment in path.split("/"):
            if ("{" in segment or "}" in segment) and not re.fullmatch(r"{[A-Za-z]\w*}", segment):
                refuse(operation, f"has a parameter that is not a whole segment of its path: {segment}")
        in_template = re.findall(r"{([^}]*)}", path)
        in_list = [p.name for p in parameters if p.place == "path"]
        if sorted(in_template) != sorted(in_list):
            refuse(operation, f"has the path parameters {in_list} but a path with {in_template}")
        names = [p.name for p in parameters] + ["body"]
        if len(set(names)) != len(names):
            refuse(operation, "has two parameters of one name")

    def request_body(self, name, tree):
        if "requestBody" not in tree:
            return None
        body = tree["requestBody"]
        where = f"{name} body"
        only_keys(where, body, {"required", "content", "description"})
        if body.get("required") is not True:
            refuse(where, "is not required")
        return self.content(where, body["content"], {"application/json"})

    def content(self, where, tree, known_media):
        if len(tree) != 1 or not set(tree) <= known_media:
            refuse(where, f"has content of the kinds {', '.join(tree)}")
        (media, inner), = tree.items()
        only_keys(where, inner, {"schema"})
        body = self.type(where, need(where, inner, "schema"))
        if (body.kind == "binary") != (media == "application/octet-stream"):
            refuse(where, f"has a {body.kind} as {media}")
        return body

    def answer(self, where, status, tree):
        if "$ref" in tree:
            only_keys(where, tree, {"$ref"})
            name = self.after(where, tree["$ref"], RESPONSE_PREFIX)
            tree = need("responses", self.responses, name)
        only_keys(where, tree, {"description", "content", "headers"})
        if not re.fullmatch(r"[2-5]\d\d", str(status)):
            refuse(where, "is no status of an answer")
        code = int(status)
        if code == 302:
            return self.redirect(where, tree)
        description = need(where, tree, "description")
        if "headers" in tree:
            refuse(where, "has headers")
        if code in WITHOUT_BODY and "content" not in tree:
            return Answer(code, None, description=description)
        if code not in WITH_BODY or "content" not in tree:
            refuse(where, "is a status that is unknown, or one whose body is out of place")
        media = {"application/problem+json"} if code >= 400 else {"application/json", "application/octet-stream"}
        return Answer(code, self.content(where, tree["content"], media), description=description)

    def redirect(self, where, tree):
        headers = need(where, tree, "headers")
        if "content" in tree or list(headers) != ["Location"] or headers["Location"].get("required") is not True:
            refuse(where, "is a redirect without a required Location, or with more")
        return Answer(302, None, has_location=True)


def referred(type_):
    """The names of the schemas that a type mentions."""
    if type_.item:
        return referred(type_.item)
    return [type_.name] if type_.name else []


def in_order_of_use(schemas):
    """Each schema after those it holds, otherwise in the document's order; a schema that holds itself is refused."""
    ordered = {}
    visiting = []

    def visit(name):
        if name in ordered:
            return
        if name in visiting:
            refuse(name, "holds itself, through " + " > ".join(visiting[visiting.index(name) :] + [name]))
        visiting.append(name)
        for member in schemas[name].members:
            for other in referred(member.type):
                visit(other)
        visiting.pop()
        ordered[name] = schemas[name]

    for name in schemas:
        visit(name)
    return ordered
