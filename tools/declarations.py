# SPDX-License-Identifier: MIT
"""What a C++ header of ours declares: enough of a parser for headers as clang-format leaves them.

Comments, preprocessor lines and function bodies are passed over; what is left is a tree of scopes (namespace, class)
whose members end in ';' or in a body.
"""
import re
from dataclasses import dataclass

NOISE = re.compile(r"//[^\n]*|/\*.*?\*/|^[ \t]*#(?:[^\n]*\\\n)*[^\n]*$|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])+'",
                   re.DOTALL | re.MULTILINE)
CLASS_HEAD = re.compile(r"^(?P<key>class|struct|union) (?:\[\[.*?\]\] )?(?P<export>KX_EXPORT )?"
                        r"(?P<name>[A-Za-z_]\w*(?:<[^:{]*>)?)(?: final)?(?: ?:[^:].*)?$")
NAMESPACE_HEAD = re.compile(r"^(?:inline )?namespace ?(?P<name>[\w:]*)$")
DROPPED = re.compile(r"\[\[.*?\]\] ?|extern \"C\" |\b(?:KX_EXPORT|virtual|inline|extern|friend|explicit)\b ?|"
                     r" ?\bnoexcept\([^()]*\)| ?\b(?:override|final|noexcept)\b| ?= ?(?:0|default)$")


@dataclass(frozen=True)
class Declaration:
    """One operation or variable: `spelling` as an application reads it, `owner` the class ("" for none)."""

    owner: str
    spelling: str
    for_subclasses: bool = False


@dataclass
class Scope:
    kind: str  # "namespace" or "class"
    name: str = ""
    access: str = "public"
    exported: bool = False


def declarations(text):
    """The public declarations of a header inside namespace kx, in its own order."""
    return [found for found in Reader(text).read() if found]


class Reader:
    def __init__(self, text):
        self.text = NOISE.sub(lambda match: match.group() if match.group()[0] in "\"'" else " ", text)
        self.at = 0
        self.scopes = []

    def read(self):
        head = ""
        while self.at < len(self.text):
            character = self.text[self.at]
            if character in "\"'":
                head += self.literal()
                continue
            self.at += 1
            if character == "(":
                head += self.enclosed("(", ")")
            elif character == "{":
                scope = self.scope_of(tidy(head))
                if scope:
                    self.scopes.append(scope)
                    head = ""
                else:
                    self.at -= 1
                    body = self.enclosed("{", "}", opened=False)
                    if function_name(tidy(head)) and not re.match(r"\s*[{,]", self.text[self.at:]):
                        yield self.declared(tidy(head), has_body=True)
                        head = ""
                    else:
                        head += body
            elif character == "}":
                if self.scopes:
                    self.scopes.pop()
                head = ""
            elif character == ";":
                yield self.declared(tidy(head), has_body=False)
                head = ""
            elif character == ":" and (label := re.fullmatch(r"\s*(public|protected|private)\s*", head)):
                self.scopes[-1].access = label.group(1)
                head = ""
            else:
                head += character

    def literal(self):
        match = NOISE.match(self.text, self.at)
        if not match:  # a digit separator
            self.at += 1
            return self.text[self.at - 1]
        self.at = match.end()
        return match.group()

    def enclosed(self, opening, closing, opened=True):
        """The text up to the bracket that closes the one just read (or about to be read)."""
        depth, start = (1 if opened else 0), self.at - (1 if opened else 0)
        while self.at < len(self.text):
            character = self.text[self.at]
            if character in "\"'":
                self.literal()
                continue
            self.at += 1
            depth += (character == opening) - (character == closing)
            if depth == 0:
                break
        return self.text[start:self.at]

    def scope_of(self, head):
        if match := NAMESPACE_HEAD.match(head):
            return Scope("namespace", match.group("name"))
        if head == 'extern "C"':
            return Scope("namespace", "")
        if match := CLASS_HEAD.match(without_template(head)):
            exported = bool(match.group("export")) or head.startswith("template")
            return Scope("class", match.group("name"), "private" if match.group("key") == "class" else "public", exported)
        return None

    def declared(self, head, has_body):
        namespaces = "::".join(scope.name for scope in self.scopes if scope.kind == "namespace" and scope.name)
        classes = [scope for scope in self.scopes if scope.kind == "class"]
        if namespaces.split("::")[0] != "kx" or not head or is_no_declaration(head):
            return None
        hidden = [scope for scope in classes if scope.access != "public"]
        hook = hidden == classes[-1:] and classes and classes[-1].access == "protected" and "virtual " in head
        if hidden and not hook:
            return None
        inline = has_body or re.search(r"\b(inline|constexpr|template)\b", head)
        if not (inline or "KX_EXPORT" in head or any(scope.exported for scope in classes)):
            return None
        owner = "::".join(scope.name for scope in classes)
        name = function_name(head)
        if name is None:
            return Declaration("", spelled(head)) if not classes else None
        if (classes and name.lstrip("~") == classes[-1].name.split("<")[0] or re.search(r"= ?delete$", head)
                or name == "operator="):
            return None
        return Declaration(owner, spelled(head), hook)


def tidy(head):
    return re.sub(r"(?<=\() | (?=\))", "", re.sub(r"\s+", " ", head)).strip()


def without_template(head):
    """The head after its `template<...>` and `requires` clauses."""
    if not head.startswith("template"):
        return head
    rest = head[after(head, head.index("<"), "<", ">"):].lstrip()
    if not rest.startswith("requires"):
        return rest
    rest = rest[len("requires"):].lstrip()
    if rest.startswith("("):
        return rest[after(rest, 0, "(", ")"):].lstrip()
    return re.sub(r"^[\w:]+(<[^(]*?>)? ?(?=[\w\[])", "", rest)


def after(text, at, opening, closing):
    """The place behind the bracket that closes the one at `at`; `->` closes nothing."""
    depth = 0
    for at in range(at, len(text)):
        depth += (text[at] == opening) - (text[at] == closing and text[at - 1:at + 1] != "->")
        if depth == 0:
            break
    return at + 1


def function_name(head):
    """The name of the function that the head declares, None if it declares a variable."""
    plain = re.sub(r"\[\[.*?\]\]", "", without_template(head))
    if match := re.search(r"operator ?(\(\)|\[\]|[^\w\s(]+|[\w:<>&*]+(?: ?[&*])?) ?\(", plain):
        return "operator" + match.group(1)
    depth = 0
    for at, character in enumerate(plain):
        if character == "=" and depth == 0:
            return None  # the initial value of a variable
        if character == "<":
            depth += 1
        elif character == ">" and plain[at - 1] != "-":
            depth -= 1
        elif character == "(" and depth == 0 and plain[at + 1] != "*":
            match = re.search(r"(~?\w+) ?$", plain[:at])
            return match.group(1) if match else None
    return None


def is_no_declaration(head):
    plain = without_template(head)
    return bool(re.match(r"(using|typedef|static_assert|friend|enum|namespace|concept)\b|"
                         r"(class|struct|union) [\w ]+$", plain))


def spelled(head):
    return tidy(DROPPED.sub("", without_template(head)))
