# SPDX-License-Identifier: GPL-3.0-or-later
"""Finds the places of a C++ source where one change makes another program of it.

Relies on the layout that clang-format gives the tree: a binary operator stands between blanks, a pointer's star and
a template's bracket do not. What is no C++ after the change sorts itself out, since it does not compile.
"""
import dataclasses
import hashlib
import re

# Comments, preprocessor lines and texts are hidden; names and numbers are matched so that a quote after them, as in
# 1'000, opens nothing.
HIDDEN = re.compile(
    r"""//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*"""
    r"""|(?:u8|u|U|L)?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)\""""
    r"""|(?:u8|u|U|L)?"(?:\\.|[^"\\\n])*"|(?:u8|u|U|L)?'(?:\\.|[^'\\\n])+'"""
    r"""|(?P<kept>[A-Za-z_]\w*|\d(?:'?[\w.])*)""", re.S | re.M)

OPERATORS = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",),
    "&&": ("||",), "||": ("&&",), "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*",),
    "+=": ("-=",), "-=": ("+=",), "&": ("|",), "|": ("&",),
}
BINARY = re.compile(r"(?<=\s)(?:%s)(?=\s)" % "|".join(re.escape(word) for word in sorted(OPERATORS, key=len)[::-1]))
STEP = re.compile(r"\+\+|--")
NOT = re.compile(r"(?<![\w)\]])!(?=[\w(:])")
BRANCH = re.compile(r"\b(?:if|while) \(")
CONSTANT = re.compile(r"(?<![\w.])(?:true|false|0x[0-9a-fA-F']+|\d[\d']*(?:\.\d+)?)(?=[uUlLf]*\b)")
RETURN = re.compile(r"\b(?:co_)?return (?=[^;\s])")
STATEMENT = re.compile(r"(?<=[;{}:)])\s+(?=(?:co_await )?(?:::)?[A-Za-z_])")
NO_CALL = re.compile(r"(?:return|co_return|if|for|while|switch|else|throw|delete|using|case|break|continue|goto|do|"
                     r"static_assert|typedef|Q_OBJECT)\b")
LINK = re.compile(r"(?:co_await )?(?:::)?[A-Za-z_]\w*(?:(?:::|\.|->)~?[A-Za-z_]\w*)*|(?:\.|->)[A-Za-z_]\w*")
CLOSING = {"(": ")", "[": "]", "{": "}"}


@dataclasses.dataclass(frozen=True)
class Change:
    """At start, the text old becomes new."""
    file: str
    start: int
    line: int
    old: str
    new: str
    rank: str

    def applied_to(self, text):
        return text[:self.start] + self.new + text[self.start + len(self.old):]

    def shown(self):
        short = [" ".join(side.split()) for side in (self.old, self.new)]
        return "%s:%d  %s => %s" % (self.file, self.line, *(s if len(s) < 70 else s[:66] + " ..." for s in short))


def code_of(text):
    """The text with everything that is no code made blank, letter for letter; texts in quotes become tildes."""
    def hide(match):
        if match["kept"]:
            return match[0]
        filler = " " if match[0].lstrip()[:1] in ("/", "#") else "~"
        return "".join(c if c == "\n" else filler for c in match[0])
    return HIDDEN.sub(hide, text)


def balanced_end(code, at, stop=""):
    """Behind the bracket that closes the one at `at`, or, with stop, at the first of its letters outside brackets."""
    depth = []
    while at < len(code):
        letter = code[at]
        if stop and not depth and letter in stop:
            return at
        if letter in CLOSING:
            depth.append(CLOSING[letter])
        elif letter in ")]}":
            if not depth or depth.pop() != letter:
                return None
            if not stop and not depth:
                return at + 1
        at += 1
    return None


def outside_brackets(code):
    """The code with what stands in brackets made blank."""
    shown, at = [], 0
    while at < len(code):
        end = balanced_end(code, at) if code[at] in CLOSING else None
        shown.append(" " * (end - at) if end else code[at])
        at = end or at + 1
    return "".join(shown)


def other_number(word):
    if word in ("true", "false"):
        return ("false",) if word == "true" else ("true",)
    plain = word.replace("'", "")
    if "." in plain:
        return (repr(float(plain) + 1),)
    number = int(plain, 16 if plain.startswith("0x") else 10)
    return (str(number + 1), "0") if number == 1 else (str(number + 1),)


def conditions(code):
    for match in BRANCH.finditer(code):
        end = balanced_end(code, match.end() - 1)
        if end is None:
            continue
        start = match.end()
        flat = outside_brackets(code[start:end - 1])
        start += flat.rfind(";") + 1
        start += len(code[start:end]) - len(code[start:end].lstrip())
        if not re.search(r" = ", flat[flat.rfind(";") + 1:]):
            yield start, end - 1, lambda old: "!(%s)" % old


def returns(code):
    for match in RETURN.finditer(code):
        end = balanced_end(code, match.end(), ";")
        if end is None:
            continue
        value = code[match.end():end]
        if value not in ("{}", "false", "0", "nullptr"):
            yield match.end(), end, lambda old: "{}"
        if re.search(r"^!|\s(?:[<>]=?|[=!]=|&&|\|\|)\s", outside_brackets(value)):
            yield match.end(), end, lambda old: "!(%s)" % old


def calls(code):
    for match in STATEMENT.finditer(code):
        start = at = match.end()
        if NO_CALL.match(code, at):
            continue
        link = LINK.match(code, at)
        while link:
            at = link.end()
            while at < len(code) and code[at] in "([":
                at = balanced_end(code, at) or len(code)
            link = LINK.match(code, at) if code[at:at + 1] in (".", "-") else None
        if code[at:at + 1] == ";" and code[at - 1] == ")":
            yield start, at, lambda old: ""


def words(code):
    for match in BINARY.finditer(code):
        if match[0] == "+" and "~" in (code[:match.start()].rstrip()[-1:], code[match.end():].lstrip()[:1]):
            continue  # joins texts
        for new in OPERATORS[match[0]]:
            yield *match.span(), lambda old, new=new: new
    for match in STEP.finditer(code):
        yield *match.span(), lambda old: "--" if old == "++" else "++"
    for match in NOT.finditer(code):
        yield *match.span(), lambda old: ""
    for match in CONSTANT.finditer(code):
        for new in other_number(match[0]):
            yield *match.span(), lambda old, new=new: new


def changes_of(name, text, seed):
    """All changes of one file. Their rank is drawn by seed and does not depend on where in the tree or in the file the
    line stands, so that the same changes are picked again after other lines have changed."""
    code = code_of(text)
    base = name.rsplit("/", 1)[-1]
    for find in (words, conditions, returns, calls):
        for start, end, make in find(code):
            old = text[start:end]
            new = make(old)
            begin = text.rfind("\n", 0, start) + 1
            line = text[begin:(text + "\n").index("\n", end)]
            key = "\0".join((str(seed), base, line, str(start - begin), old, new))
            yield Change(name, start, text.count("\n", 0, start) + 1, old, new,
                         hashlib.sha256(key.encode()).hexdigest())
