# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads a transcript and plays it on a host. README.md describes the form."""
import contextlib
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass, field

HERE = os.path.dirname(os.path.abspath(__file__))
SAMPLES = os.path.join(HERE, "../../samples/drawings")
PATIENCE = 60


@dataclass
class Step:
    """One thing that is put to the host and what must come of it."""
    line: int
    kind: str  # "input", "expression", "drawing", "file" or "check"
    text: str
    said: list = field(default_factory=list)
    value: str = None
    content: str = ""

    def prompt(self):
        """The question that the next answer stands behind; None at the command prompt."""
        if not self.said or self.value is not None:
            return None
        # After "..." it may be any question, or none.
        return "...:" if self.said[-1] == "..." else self.said[-1] if self.said[-1].endswith(":") else None

    def shown(self):
        """All lines that the host must show, the question that waits left out."""
        return self.said[:-1] if self.prompt() and self.said[-1] != "..." else self.said + ([self.value] if self.value else [])


class Fault(Exception):
    """A transcript that cannot be read."""


def read(path):
    """The steps of a transcript."""
    steps = []
    lines = open(path, encoding="utf-8").read().split("\n")
    at = 0
    while at < len(lines):
        line, number = lines[at], at + 1
        at += 1
        if not line.strip() or line.startswith("#"):
            continue
        if line == ">" or line.startswith("> "):
            steps.append(Step(number, "input", line[2:]))
        elif line.startswith("("):
            text = line
            # An expression goes on until something else begins.
            while at < len(lines) and lines[at].startswith(" "):
                text += " " + lines[at].strip()
                at += 1
            steps.append(Step(number, "expression", text))
        elif line.startswith("@ "):
            steps.append(Step(number, "check", line[2:]))
        elif line.startswith("drawing "):
            steps.append(Step(number, "drawing", line[8:].strip()))
        elif line.startswith("file "):
            end = lines.index("end", at) if "end" in lines[at:] else len(lines)
            content = "".join(text + "\n" for text in lines[at:end])
            steps.append(Step(number, "file", line[5:].strip(), content=content))
            at = end + 1
        elif not steps:
            raise Fault("%s:%d: nothing stands before this line" % (path, number))
        elif line == "|" or line.startswith("| "):
            steps[-1].said.append(line[2:])
        elif line == "=>" or line.startswith("=> "):
            steps[-1].value = line[3:].strip()
        elif line.startswith("!! "):
            steps[-1].value = "; error: " + line[3:].strip()
        else:
            raise Fault("%s:%d: not a line of a transcript: %s" % (path, number, line))
    return steps


def fits(expected, actual):
    """Whether a line is as expected, "..." standing for anything."""
    pattern = ".*".join(re.escape(part) for part in expected.rstrip().split("..."))
    return re.fullmatch(pattern, actual.rstrip()) is not None


def all_fit(expected, actual):
    """The same for lines; a line of nothing but "..." stands for any number of them."""
    if not expected:
        return not actual
    if expected[0] == "...":
        return any(all_fit(expected[1:], actual[skip:]) for skip in range(len(actual) + 1))
    return bool(actual) and fits(expected[0], actual[0]) and all_fit(expected[1:], actual[1:])


class Session:
    """A host in a folder of its own."""

    def __init__(self, host, folder):
        self.folder = folder
        os.makedirs(os.path.join(folder, "support"))
        environment = {key: value for key, value in os.environ.items() if not key.startswith("XDG_")}
        environment.update(HOME=folder, TZ="UTC", LC_ALL="C.UTF-8", XDG_CONFIG_HOME=folder + "/config",
                           XDG_STATE_HOME=folder + "/state", TRANSCRIPT="in the environment")
        # Read by another descriptor: the host's own place in the file must not move.
        self.output = open(os.path.join(folder, "output"), "ab")
        self.process = subprocess.Popen(
            [host, "--support", os.path.join(folder, "support"), "--registry", os.path.join(folder, "registry.ini")],
            stdin=subprocess.PIPE, stdout=self.output, stderr=subprocess.STDOUT, cwd=folder, env=environment)

    def send(self, text):
        with contextlib.suppress(BrokenPipeError):
            self.process.stdin.write(text.encode())
            self.process.stdin.flush()

    def text(self):
        with open(self.output.name, "rb") as output:
            text = output.read().decode(errors="replace")
        # AddressSanitizer's remark about the evaluator's own stack.
        return re.sub(r"^==\d+==WARNING: ASan doesn't fully support makecontext.*\n", "", text, flags=re.M)

    def wait_for(self, ending):
        """Waits until the host has said all it has to say and asks this."""
        limit = time.monotonic() + PATIENCE
        while not fits("..." + ending, self.text().rsplit("\n", 1)[-1]) and time.monotonic() < limit:
            time.sleep(0.01)

    def finish(self):
        """Ends the input; all lines that the host has written."""
        with contextlib.suppress(BrokenPipeError):
            self.process.stdin.close()
        try:
            self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        lines = self.text().rstrip("\n").split("\n")
        if lines[-1] == "Command: ":
            lines.pop()
        # A prompt that was shown and is shown again with its answer counts once, and the one that waits for the rest of
        # an expression does not count: where a block of the input ends is chance.
        return [line for line, after in zip(lines, lines[1:] + [""])
                if not (line.endswith(": ") and after.startswith(line)) and not re.fullmatch(r'[("]+_> ', line)]


def play(host, steps, before=""):
    """Plays the steps; the faults found, and all lines that the host has written. What is given as before is
    typed first in every drawing."""
    with tempfile.TemporaryDirectory(prefix="transcript") as folder:
        folder = os.path.realpath(folder)
        session = Session(host, folder)

        def filled(text):
            return text.replace("{dir}", folder)

        session.send(before)
        asked = "Command:"
        anchors = []
        for step in steps:
            text = filled(step.text)
            if step.kind == "file":
                target = os.path.join(folder, step.text)
                os.makedirs(os.path.dirname(target), exist_ok=True)
                with open(target, "w", encoding="utf-8") as out:
                    out.write(filled(step.content))
            elif step.kind == "drawing":
                name, _, target = text.partition(" as ")
                shutil.copy(os.path.join(SAMPLES, name), os.path.join(folder, target or name))
                text = '(command "OPEN" "%s")' % (target or name)
                session.send(text + "\n" + before)
                anchors.append((step, ["Command: " + text]))
            elif step.kind in ("input", "expression"):
                if text == "^C":
                    if asked == "...:":
                        sys.exit("line %s: a cancel must be told which question it answers" % step.line)
                    session.wait_for(asked)
                    session.send("\x03")
                    anchors.append((step, [asked]))
                else:
                    session.send(text + "\n")
                    # Quotes round an answer are taken off; a question without a text leaves it alone on its line.
                    bare = text[1:-1] if re.fullmatch('"[^"]*"', text) else text
                    anchors.append((step, [asked + " " + text, asked + " " + bare] + [text] * (asked == "Command:")))
                asked = filled(step.prompt() or "Command:")
        lines = session.finish()
        faults = compare(anchors, lines, filled)
        faults += [fault for step in steps if step.kind == "check" for fault in check(folder, step)]
        return faults, lines


def compare(anchors, lines, filled):
    """Cuts what was said at the inputs and compares piece by piece."""
    faults = []
    places = []
    start = 0
    for step, shapes in anchors:
        found = next((at for at in range(start, len(lines)) if any(fits(shape, lines[at]) for shape in shapes)), None)
        if found is None:
            faults.append("line %s: the host never came to\n    %s\nbut said\n    %s" %
                          (step.line, shapes[0], "\n    ".join(lines[start:start + 12])))
            break
        places.append(found)
        start = found + 1
    places.append(len(lines) if len(places) == len(anchors) else start)
    for (step, _), begin, end in zip(anchors, places, places[1:]):
        actual = lines[begin + 1:end]
        unchecked = step.kind == "drawing" or (step.kind == "expression" and step.value is None)
        if unchecked and not any(line.startswith("; error:") or "; error:" in line for line in actual):
            continue
        expected = [filled(line) for line in step.shown()]
        if not all_fit(expected, actual):
            faults.append("line %s: %s\n  expected\n    %s\n  but the host said\n    %s" %
                          (step.line, step.text, "\n    ".join(expected), "\n    ".join(actual)))
    return faults


def page_of(path):
    """Size of a page in millimetres, its words with their left end and the middle of their height from below, and whether
    it is without colour, as poppler sees it."""
    page = subprocess.run(["pdftotext", "-bbox", path, "-"], capture_output=True, text=True, check=True).stdout
    width, height = map(float, re.search(r'<page width="([\d.]+)" height="([\d.]+)"', page).groups())
    millimetres = 25.4 / 72
    words = [(word, round(float(left) * millimetres, 1),
              round((height - (float(top) + float(bottom)) / 2) * millimetres, 1))
             for left, top, bottom, word in re.findall(
                 r'<word xMin="([\d.-]+)" yMin="([\d.-]+)" xMax="[\d.-]+" yMax="([\d.-]+)">(.*?)</word>', page)]
    picture = subprocess.run(["pdftoppm", "-r", "72", path], capture_output=True, check=True).stdout
    pixels = picture.split(b"\n", 3)[3]
    colors = {pixels[i:i + 3] for i in range(0, len(pixels), 3)}
    gray = all(max(color) - min(color) < 3 for color in colors)
    return dict(size=(round(width * millimetres), round(height * millimetres)), words=words, gray=gray)


def check(folder, step):
    """Evaluates an expression of Python over a file that was written; the drawing as ezdxf reads it."""
    import ezdxf
    name, _, expression = step.text.partition(" ")
    path = os.path.join(folder, name)
    try:
        names = {"exists": os.path.exists(path)}
        if os.path.exists(path):
            with open(path, "rb") as data:
                names["bytes"] = data.read()
            names["text"] = names["bytes"].decode("utf-8", "replace")
            if path.endswith(".dxf"):
                doc = ezdxf.readfile(path)
                names.update(doc=doc, header=doc.header, layers=doc.layers, msp=doc.modelspace())
                errors = [error.message for error in doc.audit().errors]
                if errors:
                    return ["line %s: %s: the audit finds %s" % (step.line, name, errors)]
            elif path.endswith(".pdf"):
                names.update(page_of(path))
        value = repr(eval(expression, {"ezdxf": ezdxf}, names))
    except Exception as error:  # whatever it is, it is told as the result
        value = repr(error)
    if not fits(step.value or "", value):
        return ["line %s: %s\n  expected\n    %s\n  but it is\n    %s" % (step.line, step.text, step.value, value)]
    return []
